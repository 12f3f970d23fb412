#ifndef RECIPES_BUDGET_H
#define RECIPES_BUDGET_H

#include <ovelin/sceneresourcetracker.h>

#include <QList>
#include <QRect>

#include <algorithm>

namespace recipes {

//! [item]
// An item calls this after each registration, with its member ownerState.
inline void describe(ovelin::ResourceOwnerState &ownerState, const QRect &geometry)
{
    constexpr int bytesPerPixel = 4;
    ownerState.geometry = geometry;
    ownerState.applicationValue1 = geometry.width() * geometry.height() * bytesPerPixel;
}
//! [item]

//! [decide]
using State = ovelin::ResourceOwnerState;
using StatePointer = QSharedPointer<State>;

// Allows the owners nearest to the focus, until the budget is used up.
inline void decide(ovelin::SceneResourceTracker &tracker, int budgetBytes, const QPoint &focus)
{
    QList<StatePointer> states;
    for (const auto &[owner, state] : tracker.owners())
        states.append(state);
    std::ranges::sort(states, {}, [&focus](const StatePointer &state) {
        return (state->geometry.center() - focus).manhattanLength();
    });

    QList<StatePointer> allowed;
    QList<StatePointer> denied;
    for (const StatePointer &state : std::as_const(states)) {
        const bool fits = state->applicationValue1 <= budgetBytes;
        budgetBytes -= fits ? state->applicationValue1 : 0;
        (fits ? allowed : denied).append(state);
    }

    const auto tell = [&tracker](const StatePointer &state, State::Status status) {
        const auto known = tracker.owners().find(state->owner);
        const bool isListed = known != tracker.owners().end() && known->second == state;
        if (!isListed || state->status == status)
            return;
        tracker.setStatus(state, status);
        if (status == State::CreationAllowed)
            tracker.allowResources(state);
        else
            tracker.releaseResources(state);
    };
    // Owners release memory before others are allowed.
    for (const StatePointer &state : std::as_const(denied))
        tell(state, State::CreationDenied);
    for (const StatePointer &state : std::as_const(allowed))
        tell(state, State::CreationAllowed);
}
//! [decide]

} // namespace recipes

#endif
