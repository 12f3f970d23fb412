#ifndef RECIPES_LOGTABLE_H
#define RECIPES_LOGTABLE_H

#include <ovelin/sceneresourcetracker.h>

#include <QDebug>

namespace recipes {

//! [log]
// Prints a line for each message from now on.
inline void printLog(ovelin::SceneResourceTracker &tracker)
{
    using Tracker = ovelin::SceneResourceTracker;
    const auto printLast = [&tracker] {
        constexpr const char *events[] = {"", "registered", "updated", "status", "unregistered"};
        const Tracker::Message message = tracker.messages().constLast();
        qDebug().noquote() << QString(events[message.event]).leftJustified(12)
                           << message.status.leftJustified(18)
                           << message.className.leftJustified(22) << message.type.leftJustified(16)
                           << message.source;
    };
    QObject::connect(&tracker, &Tracker::messagesAdded, &tracker, printLast);
    tracker.setMessagesEnabled(true);
}
//! [log]

} // namespace recipes

#endif
