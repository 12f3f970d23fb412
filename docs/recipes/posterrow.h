#ifndef RECIPES_POSTERROW_H
#define RECIPES_POSTERROW_H

#include "loadedposter.h"

#include <ovelin/sceneresourcetracker.h>
#include <ovelin/throbberrenderer.h>

#include <QList>
#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <vector>

namespace recipes {

//! [card]
class PosterCard : public LoadedPoster
{
public:
    using LoadedPoster::LoadedPoster;

    const QRect &geometry() const { return m_geometry; }

    // The geometry is in the coordinates of the screen.
    void setGeometry(const QRect &geometry)
    {
        m_geometry = geometry;
        if (ownerState) // null if the registration was refused
            ownerState->geometry = geometry;
    }

    // The throbber's rectangle is in the coordinates of the card: one throbber serves all cards.
    void paint(QPainter &painter, ovelin::ThrobberRenderer &throbber) const
    {
        painter.save();
        painter.translate(m_geometry.topLeft());
        painter.drawImage(QRect(QPoint(), m_geometry.size()), image());
        if (isLoading())
            throbber.draw(painter);
        painter.restore();
    }

private:
    QRect m_geometry;
};
//! [card]

//! [decide]
using State = ovelin::ResourceOwnerState;
using StatePointer = QSharedPointer<State>;

// Allows the owners on the screen. Denies those that were never there, and clears those that have left it.
inline void allowOnScreen(ovelin::SceneResourceTracker &tracker, const QRect &screen)
{
    QList<StatePointer> states;
    for (const auto &[owner, state] : tracker.owners())
        states.append(state);

    for (const bool isOnScreen : {false, true}) { // owners release memory before others are allowed
        for (const StatePointer &state : std::as_const(states)) {
            const auto known = tracker.owners().find(state->owner);
            const bool isListed = known != tracker.owners().end() && known->second == state;
            if (!isListed || state->geometry.intersects(screen) != isOnScreen)
                continue;
            if (isOnScreen && state->status != State::CreationAllowed) {
                tracker.setStatus(state, State::CreationAllowed);
                tracker.allowResources(state);
            } else if (!isOnScreen && state->status == State::CreationAllowed) {
                tracker.setStatus(state, State::Cleared);
                tracker.releaseResources(state);
            } else if (!isOnScreen && state->status == State::CreationRequested) {
                tracker.setStatus(state, State::CreationDenied);
            }
        }
    }
}
//! [decide]

//! [row]
class PosterRow : public QObject
{
    Q_OBJECT

public:
    static constexpr QSize cardSize{200, 112};
    static constexpr int gap = 12;

    PosterRow(ovelin::SceneResourceTracker &tracker, const QRect &screen, const QList<QUrl> &files)
        : m_tracker(tracker)
        , m_screen(screen)
    {
        m_throbber.setRenderRect(QRect(76, 32, 48, 48)); // in the middle of a card
        connect(&m_throbber, &ovelin::ThrobberRenderer::updated, this, &PosterRow::changed);

        m_decision.setSingleShot(true);
        m_decision.setInterval(0);
        connect(&tracker, &ovelin::SceneResourceTracker::resourcesChanged, &m_decision,
                qOverload<>(&QTimer::start));
        connect(&m_decision, &QTimer::timeout, this, &PosterRow::decide);

        for (const QUrl &file : files) {
            m_cards.push_back(std::make_unique<PosterCard>(file)); // an owner cannot be moved
            connect(m_cards.back().get(), &LoadedPoster::loaded, this, &PosterRow::showState);
        }
        scrollTo(0);
    }

    void scrollTo(int offset)
    {
        QRect place(m_screen.topLeft() - QPoint(offset, 0), cardSize);
        for (const auto &card : m_cards) {
            card->setGeometry(place);
            place.translate(cardSize.width() + gap, 0);
        }
        m_decision.start(); // a new geometry emits no signal
        Q_EMIT changed();
    }

    void paint(QPainter &painter)
    {
        painter.setRenderHint(QPainter::Antialiasing); // for the throbber
        painter.setClipRect(m_screen);
        for (const auto &card : m_cards) {
            if (card->geometry().intersects(m_screen))
                card->paint(painter, m_throbber);
        }
    }

Q_SIGNALS:
    void changed(); // repaint the row

private:
    void decide()
    {
        allowOnScreen(m_tracker, m_screen);
        showState();
    }

    void showState()
    {
        const auto isLoading = [](const auto &card) { return card->isLoading(); };
        m_throbber.setRunning(std::ranges::any_of(m_cards, isLoading));
        Q_EMIT changed();
    }

    ovelin::SceneResourceTracker &m_tracker;
    const QRect m_screen;
    QTimer m_decision;
    ovelin::ThrobberRenderer m_throbber;
    std::vector<std::unique_ptr<PosterCard>> m_cards;
};
//! [row]

} // namespace recipes

#endif
