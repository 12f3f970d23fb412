#include "resourcepolicy.h"

#include "ownerrecord.h"

#include <ovelin/sceneresourcetracker.h>

#include <algorithm>
#include <tuple>

namespace tvguide {

namespace {

using ovelin::ResourceOwnerState;
using ovelin::SceneResourceTracker;

// Owners may change their resources with every decision, and decide() then decides again: at most this many
// times in a row. After that the event loop calls decide().
constexpr int maxRounds = 4;

bool mayHold(ResourceOwnerState::Status status)
{
    return status == ResourceOwnerState::CreationAllowed || status == ResourceOwnerState::Ignored;
}

bool isNegligible(ResourceOwnerState &state)
{
    return neededBytes(state) < ResourcePolicy::negligibleBytes;
}

} // namespace

ResourcePolicy::ResourcePolicy(SceneResourceTracker &tracker, qint64 budget, QObject *parent)
    : QObject(parent)
    , m_tracker(tracker)
    , m_budget(budget)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &ResourcePolicy::decide);
    connect(&tracker, &SceneResourceTracker::resourcesChanged, this, &ResourcePolicy::reconsider);
    connect(&tracker, &SceneResourceTracker::resourceOwnerAdded, this, &ResourcePolicy::reconsider);
    connect(&tracker, &SceneResourceTracker::resourceOwnerRemoved, this,
            &ResourcePolicy::reconsider);
}

void ResourcePolicy::setView(const QRect &screen, const QPoint &focus)
{
    m_screen = screen;
    m_focus = focus;
    reconsider();
}

void ResourcePolicy::reconsider()
{
    m_isStale = true;
    if (!m_isDeciding)
        m_timer.start();
}

void ResourcePolicy::decide()
{
    if (m_isDeciding)
        return;

    m_isDeciding = true;
    m_timer.stop();
    for (int round = 0; m_isStale && round < maxRounds; ++round) {
        m_isStale = false;
        carryOut(verdicts());
    }
    m_isDeciding = false;

    if (m_isStale)
        m_timer.start();
}

// Sorts the owners by priority. The tracker sorts them by address, which differs from run to run.
std::vector<ResourcePolicy::Candidate> ResourcePolicy::candidates() const
{
    std::vector<Candidate> candidates;
    candidates.reserve(m_tracker.owners().size());
    for (const auto &[owner, state] : m_tracker.owners()) {
        candidates.push_back({.state = state,
                              .isVisible = m_screen.intersects(state->geometry),
                              .distance = (state->geometry.center() - m_focus).manhattanLength()});
    }
    std::ranges::sort(candidates, {}, [](const Candidate &c) {
        const QRect &place = c.state->geometry;
        return std::tuple(!c.isVisible, -importance(*c.state), c.distance, place.top(),
                          place.left(), neededBytes(*c.state));
    });
    return candidates;
}

std::vector<ResourcePolicy::Verdict> ResourcePolicy::verdicts() const
{
    const std::vector<Candidate> candidates = this->candidates();
    qint64 left = m_budget;
    for (const Candidate &candidate : candidates) {
        if (isNegligible(*candidate.state))
            left -= neededBytes(*candidate.state);
    }

    std::vector<Verdict> verdicts;
    for (const Candidate &candidate : candidates) {
        const qint32 needed = neededBytes(*candidate.state);
        auto status = ResourceOwnerState::CreationAllowed;
        if (isNegligible(*candidate.state))
            status = ResourceOwnerState::Ignored;
        else if (!candidate.isVisible)
            status = ResourceOwnerState::Cleared;
        else if (needed > left)
            status = ResourceOwnerState::CreationDenied;
        else
            left -= needed;
        if (candidate.state->status != status)
            verdicts.push_back({candidate.state, status});
    }
    return verdicts;
}

// False if the owner of the state has left the tracker. Another owner, told of its decision before, can have
// unregistered or destroyed it.
bool ResourcePolicy::isRegistered(const QSharedPointer<ResourceOwnerState> &state) const
{
    const auto known = m_tracker.owners().find(state->owner);
    return known != m_tracker.owners().end() && known->second == state;
}

// Lets owners release memory before it allows others, so that the sum never exceeds the budget.
void ResourcePolicy::carryOut(const std::vector<Verdict> &verdicts)
{
    for (const bool allow : {false, true}) {
        for (const auto &[state, status] : verdicts) {
            if (mayHold(status) != allow || !isRegistered(state))
                continue;
            m_tracker.setStatus(state, status);
            if (allow)
                m_tracker.allowResources(state);
            else
                m_tracker.releaseResources(state);
        }
    }
}

ResourcePolicy::Summary ResourcePolicy::summary() const
{
    Summary summary;
    for (const auto &[owner, state] : m_tracker.owners()) {
        ++summary.owners;
        switch (state->status) {
        case ResourceOwnerState::CreationRequested:
            ++summary.requested;
            break;
        case ResourceOwnerState::CreationAllowed:
            ++summary.allowed;
            summary.heldBytes += neededBytes(*state);
            break;
        case ResourceOwnerState::CreationDenied:
            ++summary.denied;
            break;
        case ResourceOwnerState::Cleared:
            ++summary.cleared;
            break;
        case ResourceOwnerState::Ignored:
            ++summary.ignored;
            summary.heldBytes += neededBytes(*state);
            break;
        }
    }
    return summary;
}

} // namespace tvguide
