#ifndef OVELIN_MESSAGELOG_P_H
#define OVELIN_MESSAGELOG_P_H

#include <QString>

namespace ovelin {

// The text of an address as messages show it.
inline QString addressText(qint64 address)
{
    using namespace Qt::StringLiterals;
    constexpr int digits = 8;
    constexpr int hexadecimal = 16;
    return u"0x%1"_s.arg(static_cast<quint64>(address), digits, hexadecimal, '0'_L1);
}

// Widened to 64 bits with its sign: an address with the top bit of a 32-bit pointer set shows with
// eight leading f digits.
inline QString addressText(const void *object)
{
    return addressText(qint64{reinterpret_cast<qintptr>(object)});
}

} // namespace ovelin

#endif
