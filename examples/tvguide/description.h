#ifndef TVGUIDE_DESCRIPTION_H
#define TVGUIDE_DESCRIPTION_H

#include <QByteArray>

namespace tvguide {

class GuideScene;
class ResourcePolicy;
class TrackerLog;

// Returns the content of the screen as JSON: the displayed lines of every text, the rectangle of
// every card, and the decisions about pictures. Machines with the same font give the same
// description.
QByteArray describe(const GuideScene &scene, const ResourcePolicy &policy, const TrackerLog &log);

} // namespace tvguide

#endif
