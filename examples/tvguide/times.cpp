#include "times.h"

#include "timezones.h"

#include <QRegularExpression>

#include <cstdlib>

namespace tvguide {

namespace {

using namespace std::chrono;

// The widest offsets in use are -12:00 and +14:00.
constexpr seconds maxUtcOffset = hours(14);

constexpr QLatin1StringView utcOffsetPattern(
    R"(\s*(?<zone>(?<zoneName>[A-Za-z]\S*)|(?<sign>[+-])(?<zoneHours>\d\d):?(?<zoneMinutes>\d\d))?)");

int number(const QRegularExpressionMatch &match, QLatin1StringView group, int missing)
{
    return match.hasCaptured(group) ? match.capturedView(group).toInt() : missing;
}

std::optional<seconds> utcOffset(const QRegularExpressionMatch &match)
{
    if (match.hasCaptured(QLatin1StringView("zoneName")))
        return timeZoneOffset(match.capturedView(QLatin1StringView("zoneName")));

    const seconds offset = hours(number(match, QLatin1StringView("zoneHours"), 0))
                           + minutes(number(match, QLatin1StringView("zoneMinutes"), 0));
    if (number(match, QLatin1StringView("zoneMinutes"), 0) >= 60 || offset > maxUtcOffset)
        return std::nullopt;
    return match.capturedView(QLatin1StringView("sign")) == u'-' ? -offset : offset;
}

QRegularExpressionMatch matchXmltvTime(QStringView text)
{
    static const QRegularExpression pattern(QRegularExpression::anchoredPattern(
        QStringLiteral(R"((?<year>\d{4})(?:(?<month>\d\d)(?:(?<day>\d\d)(?:T?(?<hour>\d\d))"
                       R"((?:(?<minute>\d\d)(?<second>\d\d)?)?)?)?)?)")
        + utcOffsetPattern));
    return pattern.matchView(text.trimmed());
}

std::optional<WrittenTime> writtenTime(const QRegularExpressionMatch &match)
{
    if (!match.hasMatch())
        return std::nullopt;

    const year_month_day date(
        year(number(match, QLatin1StringView("year"), 0)),
        month(static_cast<unsigned>(number(match, QLatin1StringView("month"), 1))),
        day(static_cast<unsigned>(number(match, QLatin1StringView("day"), 1))));
    const int hour = number(match, QLatin1StringView("hour"), 0);
    const int minute = number(match, QLatin1StringView("minute"), 0);
    const int second = number(match, QLatin1StringView("second"), 0);
    if (!date.ok() || date.year() < year(1) || hour >= 24 || minute >= 60 || second >= 60)
        return std::nullopt;

    WrittenTime time{.wall = local_days(date) + hours(hour) + minutes(minute) + seconds(second),
                     .utcOffset = std::nullopt};
    if (match.hasCaptured(QLatin1StringView("zone"))) {
        time.utcOffset = utcOffset(match);
        if (!time.utcOffset)
            return std::nullopt;
    }
    return time;
}

} // namespace

Instant WrittenTime::instant(std::chrono::seconds assumedOffset) const
{
    return Instant(wall.time_since_epoch() - utcOffset.value_or(assumedOffset));
}

std::optional<WrittenTime> readXmltvTime(QStringView text)
{
    return writtenTime(matchXmltvTime(text));
}

QStringView unknownTimeZone(QStringView xmltvTime)
{
    const QStringView zone = matchXmltvTime(xmltvTime).capturedView(QLatin1StringView("zoneName"));
    return timeZoneOffset(zone) ? QStringView() : zone;
}

std::optional<WrittenTime> readIsoTime(QStringView text)
{
    static const QRegularExpression pattern(QRegularExpression::anchoredPattern(
        QStringLiteral(R"((?<year>\d{4})-(?<month>\d\d)-(?<day>\d\d))"
                       R"((?:[T ](?<hour>\d\d):(?<minute>\d\d)(?::(?<second>\d\d))?)?)")
        + utcOffsetPattern));
    return writtenTime(pattern.matchView(text.trimmed()));
}

std::chrono::local_seconds WallClock::wall(Instant instant) const
{
    return local_seconds(instant.time_since_epoch() + m_utcOffset);
}

QDate WallClock::date(Instant instant) const
{
    return QDate(1970, 1, 1).addDays(floor<days>(wall(instant)).time_since_epoch().count());
}

QTime WallClock::time(Instant instant) const
{
    const seconds sinceMidnight = wall(instant) - floor<days>(wall(instant));
    return QTime(0, 0).addSecs(static_cast<int>(sinceMidnight.count()));
}

QString WallClock::hoursAndMinutes(Instant instant) const
{
    return time(instant).toString(QStringLiteral("HH:mm"));
}

QString WallClock::iso(Instant instant) const
{
    const int offset = static_cast<int>(std::abs(m_utcOffset.count()) / 60);
    return date(instant).toString(Qt::ISODate) + u'T' + time(instant).toString(Qt::ISODate)
           + QStringLiteral("%1%2:%3")
                 .arg(QLatin1Char(m_utcOffset.count() < 0 ? '-' : '+'))
                 .arg(offset / 60, 2, 10, QLatin1Char('0'))
                 .arg(offset % 60, 2, 10, QLatin1Char('0'));
}

} // namespace tvguide
