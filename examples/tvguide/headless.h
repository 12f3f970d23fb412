#ifndef TVGUIDE_HEADLESS_H
#define TVGUIDE_HEADLESS_H

#include <QString>

namespace tvguide {

class Presentation;
class TrackerLog;
struct Options;

// Draws the files that the options ask for, and prints their names, the time that the work took and
// the decisions about pictures. Returns the cause of a failure; an empty text means success.
QString drawToFiles(Presentation &presentation, const Options &options, const TrackerLog *log,
                    qint64 arrangingNanoseconds);

} // namespace tvguide

#endif
