#ifndef TVGUIDE_DESCRIPTION_H
#define TVGUIDE_DESCRIPTION_H

#include <QByteArray>

namespace tvguide {

class GuideScene;
class ResourcePolicy;
class TrackerLog;

// What is on the screen, as JSON: the displayed lines of every text, the rectangle of every card,
// and what was decided about the pictures. The same on every machine that has the same font.
QByteArray describe(const GuideScene &scene, const ResourcePolicy &policy, const TrackerLog &log);

} // namespace tvguide

#endif
