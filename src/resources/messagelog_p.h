#ifndef OVELIN_MESSAGELOG_P_H
#define OVELIN_MESSAGELOG_P_H

#include <QString>

namespace ovelin {

// The text of an address as messages show it. The address comes widened to 64 bits with its sign:
// one with the top bit of a 32-bit pointer set shows with eight leading f digits.
QString addressText(qint64 address);

} // namespace ovelin

#endif
