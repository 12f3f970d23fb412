#ifndef RECIPES_BUDGET_H
#define RECIPES_BUDGET_H

#include <ovelin/sceneresourcetracker.h>

#include <QList>
#include <QRect>

#include <algorithm>

namespace recipes {

//! [item]
// In an item that registers: if (registerImage(1, url)) describe(*ownerState, geometry);
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
    QList<StatePointer> others;
    for (const StatePointer &state : std::as_const(states)) {
        const bool fits = state->applicationValue1 <= budgetBytes;
        budgetBytes -= fits ? state->applicationValue1 : 0;
        (fits ? allowed : others).append(state);
    }

    const auto tell = [&tracker](const StatePointer &state, State::Status status) {
        const auto known = tracker.owners().find(state->owner);
        if (known == tracker.owners().end() || known->second != state)
            return;
        tracker.setStatus(state, status);
        if (status == State::CreationAllowed)
            tracker.allowResources(state);
        else if (status == State::Cleared)
            tracker.releaseResources(state);
    };
    // Owners release memory before others are allowed.
    for (const StatePointer &state : std::as_const(others)) {
        if (state->status == State::CreationAllowed)
            tell(state, State::Cleared);
        else if (state->status == State::CreationRequested)
            tell(state, State::CreationDenied);
    }
    for (const StatePointer &state : std::as_const(allowed)) {
        if (state->status != State::CreationAllowed)
            tell(state, State::CreationAllowed);
    }
}
//! [decide]

} // namespace recipes

#endif
