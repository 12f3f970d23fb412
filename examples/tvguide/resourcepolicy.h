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

// Decides which items may hold pictures. It allows items on the screen within a budget, important items and
// items near the focus first, and denies the others. Items that have left the screen release their pictures. Items
// that need very little memory are always allowed.
//
// A change in the tracker only marks the decisions as stale. New ones are made when the application calls
// decide() before it paints, or from the event loop. So a hundred registrations lead to one decision. If an
// owner registers or unregisters when it is told of a decision, another round follows, without recursion.
class ResourcePolicy : public QObject
{
    Q_OBJECT

public:
    // In bytes; smaller owners are always allowed.
    static constexpr qint32 negligibleBytes = 8 * 1024;

    struct Summary
    {
        int owners = 0;
        int requested = 0;
        int allowed = 0;
        int denied = 0;
        int cleared = 0;
        int ignored = 0;
        // What the pictures of all allowed and ignored owners need.
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
