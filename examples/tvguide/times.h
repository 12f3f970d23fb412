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

// A time as somebody wrote it: what a clock on the wall shows, and how far that clock is ahead of
// UTC, if it was said.
struct WrittenTime
{
    std::chrono::local_seconds wall;
    std::optional<std::chrono::seconds> utcOffset;

    Instant instant(std::chrono::seconds assumedOffset) const;
};

// YYYYMMDDhhmmss with as many of the pairs as the writer knew, then +hhmm, Z, UTC or nothing.
std::optional<WrittenTime> readXmltvTime(QStringView text);

// YYYY-MM-DD[Thh:mm[:ss]], then +hh:mm, Z or nothing.
std::optional<WrittenTime> readIsoTime(QStringView text);

// The clock that the screen shows. It goes by the guide's own UTC offset, never by the time zone of
// the machine, so that a picture is the same everywhere.
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
