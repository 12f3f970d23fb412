#ifndef TVGUIDE_TIMES_H
#define TVGUIDE_TIMES_H

#include <QDate>
#include <QString>
#include <QStringView>
#include <QTime>

#include <chrono>
#include <optional>

namespace tvguide {

using Instant = std::chrono::sys_seconds;

// A time as a person writes it: the time that a clock on the wall shows, and how far that clock is
// ahead of UTC. Without an offset the text does not say which clock it means.
struct WrittenTime
{
    std::chrono::local_seconds wall;
    std::optional<std::chrono::seconds> utcOffset;

    Instant instant(std::chrono::seconds assumedOffset) const;
};

// Reads a time of XMLTV: YYYYMMDDhhmmss, which may end early after a year or any pair of digits;
// then +hhmm, the name of a time zone, or nothing.
std::optional<WrittenTime> readXmltvTime(QStringView text);

// Returns the unknown name of a time zone in a time of XMLTV that has no other fault; otherwise an empty text.
QStringView unknownTimeZone(QStringView xmltvTime);

// Reads a time of ISO 8601: YYYY-MM-DD[Thh:mm[:ss]], then +hh:mm, the name of a time zone, or
// nothing.
std::optional<WrittenTime> readIsoTime(QStringView text);

// The clock on the screen. Its UTC offset is the guide's, not the machine's, so that a picture is
// the same on every machine.
class WallClock
{
public:
    explicit WallClock(std::chrono::seconds utcOffset = {})
        : m_utcOffset(utcOffset)
    {
    }

    std::chrono::seconds utcOffset() const { return m_utcOffset; }
    QDate date(Instant instant) const;
    QTime time(Instant instant) const;
    QString hoursAndMinutes(Instant instant) const;
    QString iso(Instant instant) const;

private:
    std::chrono::local_seconds wall(Instant instant) const;

    std::chrono::seconds m_utcOffset;
};

} // namespace tvguide

#endif
