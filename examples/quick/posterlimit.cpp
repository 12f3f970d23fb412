#include "posterlimit.h"

#include <ovelin/sceneresourcetracker.h>

#include <QList>

using ovelin::ResourceInfo;
using ovelin::ResourceOwnerState;
using ovelin::SceneResourceTracker;
using StatePointer = QSharedPointer<ResourceOwnerState>;

namespace {

// True if the tracker still lists the state: an owner that was told before may have removed it.
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
    // The tracker lists images in the order in which they were registered; each item has one.
    QList<StatePointer> states;
    for (const ResourceInfo &resource : m_tracker->resources())
        states.append(resource.ownerState);

    int left = m_limit;
    for (const StatePointer &state : std::as_const(states)) {
        if (!isListed(*m_tracker, state))
            continue;
        const bool isAllowed = left-- > 0;
        const auto status =
            isAllowed ? ResourceOwnerState::CreationAllowed : ResourceOwnerState::CreationDenied;
        if (state->status == status)
            continue;
        m_tracker->setStatus(state, status);
        if (isAllowed)
            m_tracker->allowResources(state);
        else
            m_tracker->releaseResources(state);
    }
}
