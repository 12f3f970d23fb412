#include "posterlimit.h"

#include <ovelin/sceneresourcetracker.h>

#include <QList>

using ovelin::ResourceInfo;
using ovelin::ResourceOwnerState;
using ovelin::SceneResourceTracker;
using StatePointer = QSharedPointer<ResourceOwnerState>;

namespace {

// True if the tracker still lists the state. Another owner, told of its decision before,
// can have unregistered the owner of this state.
bool isListed(const SceneResourceTracker &tracker, const StatePointer &state)
{
    const auto known = tracker.owners().find(state->owner);
    return known != tracker.owners().end() && known->second == state;
}

} // namespace

// Decides from the event loop, so that any number of changes lead to one decision.
PosterLimit::PosterLimit(QObject *parent)
    : QObject(parent)
    , m_tracker(ovelin::sceneResourceTracker())
{
    if (!m_tracker)
        return;
    m_timer.setSingleShot(true);
    m_timer.setInterval(0);
    const auto start = qOverload<>(&QTimer::start);
    connect(m_tracker, &SceneResourceTracker::resourcesChanged, &m_timer, start);
    connect(this, &PosterLimit::limitChanged, &m_timer, start);
    connect(&m_timer, &QTimer::timeout, this, &PosterLimit::decide);
}

void PosterLimit::decide()
{
    // The tracker lists images in the order in which they were registered. Each item has one image.
    QList<StatePointer> states;
    for (const ResourceInfo &resource : m_tracker->resources())
        states.append(resource.ownerState);

    int left = m_limit;
    for (const StatePointer &state : std::as_const(states)) {
        if (!isListed(*m_tracker, state))
            continue;
        const bool fits = left-- > 0;
        const bool isAllowed = state->status == ResourceOwnerState::CreationAllowed;
        if (fits && !isAllowed) {
            m_tracker->setStatus(state, ResourceOwnerState::CreationAllowed);
            m_tracker->allowResources(state);
        } else if (!fits && isAllowed) {
            m_tracker->setStatus(state, ResourceOwnerState::Cleared);
            m_tracker->releaseResources(state);
        } else if (!fits && state->status == ResourceOwnerState::CreationRequested) {
            m_tracker->setStatus(state, ResourceOwnerState::CreationDenied);
        }
    }
}
