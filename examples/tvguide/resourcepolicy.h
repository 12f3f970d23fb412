#ifndef TVGUIDE_RESOURCEPOLICY_H
#define TVGUIDE_RESOURCEPOLICY_H

#include <ovelin/resourceinfo.h>

#include <QObject>
#include <QPoint>
#include <QRect>
#include <QTimer>

#include <vector>

namespace ovelin {
class SceneResourceTracker;
}

namespace tvguide {

// Decides who may hold pictures. What is on the screen is served within a budget, the important and
// what is near the focus first, and denied what does not fit; what has left the screen gives up
// what it holds. Owners that need next to nothing are left alone.
//
// A change in the tracker only marks the decisions as stale: they are made when the application
// calls decide() before it paints, or when control returns to the event loop. So a hundred
// registrations cost one decision, and what an owner registers or drops when it is told leads to
// another round, not to a recursion.
class ResourcePolicy : public QObject
{
    Q_OBJECT

public:
    // Owners below this size are not worth a decision: they always get what they need.
    static constexpr qint32 negligibleBytes = 8 * 1024;

    struct Summary
    {
        int owners = 0;
        int requested = 0;
        int allowed = 0;
        int denied = 0;
        int cleared = 0;
        int ignored = 0;
        // What those need that may hold pictures.
        qint64 heldBytes = 0;
    };

    ResourcePolicy(ovelin::SceneResourceTracker &tracker, qint64 budget, QObject *parent = nullptr);

    qint64 budget() const { return m_budget; }
    void setView(const QRect &screen, const QPoint &focus);
    void decide();
    Summary summary() const;

private:
    struct Candidate
    {
        QSharedPointer<ovelin::ResourceOwnerState> state;
        bool isVisible;
        int distance;
    };
    struct Verdict
    {
        QSharedPointer<ovelin::ResourceOwnerState> state;
        ovelin::ResourceOwnerState::Status status;
    };

    void reconsider();
    std::vector<Candidate> candidates() const;
    std::vector<Verdict> verdicts() const;
    bool isRegistered(const QSharedPointer<ovelin::ResourceOwnerState> &state) const;
    void carryOut(const std::vector<Verdict> &verdicts);

    ovelin::SceneResourceTracker &m_tracker;
    const qint64 m_budget;
    QRect m_screen;
    QPoint m_focus;
    QTimer m_timer;
    bool m_isStale = true;
    bool m_isDeciding = false;
};

} // namespace tvguide

#endif
