#ifndef TVGUIDE_XMLTVREADER_H
#define TVGUIDE_XMLTVREADER_H

#include "guide.h"

#include <QString>

#include <functional>

QT_BEGIN_NAMESPACE
class QIODevice;
QT_END_NAMESPACE

namespace tvguide {

// Takes one line about a part of a file that cannot be read.
using ProblemSink = std::function<void(const QString &line)>;

struct XmltvResult
{
    Guide guide;
    int skippedEntries = 0;
};

// Reads a guide in the XMLTV format. The sink gets a line "file:line:column: cause" for each faulty
// entry, which is left out and counted, and for a fault of the file itself. The entries before a
// fault of the file are kept.
//
// LanguageChoice chooses among texts in several languages. The clock of the guide has the UTC offset of the first
// programme.
XmltvResult readXmltv(const QString &fileName, const QString &language,
                      const ProblemSink &reportProblem);

// Reads from an open device. The file name stands in messages, and the paths of icons are relative
// to its folder.
XmltvResult readXmltv(QIODevice &device, const QString &fileName, const QString &language,
                      const ProblemSink &reportProblem);

} // namespace tvguide

#endif
