#ifndef OVELIN_MESSAGELOG_P_H
#define OVELIN_MESSAGELOG_P_H

#include <QString>

namespace ovelin {

// Returns an address as messages show it: at least eight digits.
inline QString addressText(qint64 address)
{
    using namespace Qt::StringLiterals;
    constexpr int digits = 8;
    constexpr int hexadecimal = 16;
    return u"0x%1"_s.arg(static_cast<quint64>(address), digits, hexadecimal, '0'_L1);
}

// Extends the sign of a 32-bit address: one with the top bit set gets eight leading digits f.
inline QString addressText(const void *object)
{
    return addressText(qint64{reinterpret_cast<qintptr>(object)});
}

} // namespace ovelin

#endif
