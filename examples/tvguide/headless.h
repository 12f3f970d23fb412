#ifndef TVGUIDE_HEADLESS_H
#define TVGUIDE_HEADLESS_H

#include <QString>

namespace tvguide {

class Presentation;
class TrackerLog;
struct Options;

// Draws what the options ask for into files, and prints where they are, what it took and what was
// decided. Returns the cause of a failure, empty when all went well.
QString drawToFiles(Presentation &presentation, const Options &options, const TrackerLog *log,
                    qint64 arrangingNanoseconds);

} // namespace tvguide

#endif
