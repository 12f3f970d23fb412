#ifndef OVELIN_TESTS_TVGUIDE_GUIDEINVARIANTS_H
#define OVELIN_TESTS_TVGUIDE_GUIDEINVARIANTS_H

#include "xmltvreader.h"

namespace tvguide::tests {

// Each function checks a rule that holds for every file, however broken. It returns the violation
// of the rule, or an empty text.

// A message is one line without control characters.
QString problemViolation(const QString &line);
QString channelViolation(const Channel &channel);
QString guideViolation(const Guide &guide);
// Each skipped entry has one message. A fault of the file itself adds at most one message.
QString resultViolation(const XmltvResult &result, int problems);

} // namespace tvguide::tests

#endif
