#ifndef TVGUIDE_XMLTVREADER_H
#define TVGUIDE_XMLTVREADER_H

#include "guide.h"

#include <QString>

#include <functional>

QT_BEGIN_NAMESPACE
class QIODevice;
QT_END_NAMESPACE

namespace tvguide {

// Takes one line about something that could not be read.
using ProblemSink = std::function<void(const QString &line)>;

struct XmltvResult
{
    Guide guide;
    int skippedEntries = 0;
};

// Reads a guide in the XMLTV format. A faulty entry is told to the sink as "file:line:column:
// cause", left out and counted; a fault of the file itself is told too, and what stood before it is
// kept.
//
// Of texts in several languages the one in the preferred language is taken, else the one without a
// language, else the first. The clock of the guide goes by the UTC offset of its first programme.
XmltvResult readXmltv(const QString &fileName, const QString &language,
                      const ProblemSink &reportProblem);

// The same from an open device; the file name serves for messages and to find icons beside it.
XmltvResult readXmltv(QIODevice &device, const QString &fileName, const QString &language,
                      const ProblemSink &reportProblem);

} // namespace tvguide

#endif
