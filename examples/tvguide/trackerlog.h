#ifndef TVGUIDE_TRACKERLOG_H
#define TVGUIDE_TRACKERLOG_H

#include <ovelin/sceneresourcetracker.h>

#include <QObject>
#include <QStringList>

#include <deque>

namespace tvguide {

// Collects the messages of a tracker, whose own log is emptied whenever it is full.
class TrackerLog : public QObject
{
    Q_OBJECT

public:
    using Message = ovelin::SceneResourceTracker::Message;

    // Of the oldest messages the ones beyond this number are dropped.
    static constexpr std::size_t capacity = 20'000;

    explicit TrackerLog(ovelin::SceneResourceTracker &tracker, QObject *parent = nullptr);

    const std::deque<Message> &messages() const { return m_messages; }

    // The last messages, at most that many, as the lines of a table with a heading.
    QStringList table(std::size_t count) const;

private:
    void collect();

    ovelin::SceneResourceTracker &m_tracker;
    std::deque<Message> m_messages;
};

QString eventName(TrackerLog::Message::Event event);

} // namespace tvguide

#endif
