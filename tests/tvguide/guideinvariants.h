#ifndef OVELIN_TESTS_TVGUIDE_GUIDEINVARIANTS_H
#define OVELIN_TESTS_TVGUIDE_GUIDEINVARIANTS_H

#include "xmltvreader.h"

namespace tvguide::tests {

// What is wrong with what was read, whatever stood in the file; empty when nothing is.

// A problem is told on one line that a terminal shows as it is.
QString problemViolation(const QString &line);
QString channelViolation(const Channel &channel);
QString guideViolation(const Guide &guide);
// Each entry left out is a problem, and so is a file that breaks off.
QString resultViolation(const XmltvResult &result, int problems);

} // namespace tvguide::tests

#endif
