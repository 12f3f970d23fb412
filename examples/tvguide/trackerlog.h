#ifndef TVGUIDE_TRACKERLOG_H
#define TVGUIDE_TRACKERLOG_H

#include <ovelin/sceneresourcetracker.h>

#include <QObject>
#include <QStringList>

#include <deque>

namespace tvguide {

// Collects the messages of a tracker. The tracker itself empties its log when it is full.
class TrackerLog : public QObject
{
    Q_OBJECT

public:
    using Message = ovelin::SceneResourceTracker::Message;

    // The log keeps this many messages and drops older ones.
    static constexpr std::size_t capacity = 20'000;

    explicit TrackerLog(ovelin::SceneResourceTracker &tracker, QObject *parent = nullptr);

    const std::deque<Message> &messages() const { return m_messages; }

    // Returns a table with a heading and the last messages, count at most, one a line.
    QStringList table(std::size_t count) const;

private:
    void collect();

    ovelin::SceneResourceTracker &m_tracker;
    std::deque<Message> m_messages;
};

QString eventName(TrackerLog::Message::Event event);

} // namespace tvguide

#endif
