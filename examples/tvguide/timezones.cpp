#include "timezones.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono;

struct TimeZone
{
    QLatin1StringView name;
    minutes utcOffset;
};

// Source: every abbreviation of letters in the IANA time zone database, release 2025b, with its
// offset of 2024; beside them UT and Z, and MSD with the offset it had until 2010. Several places
// share an abbreviation. BST is the summer time of Britain, as the documentation of XMLTV says. CST
// and CDT are those of Chicago, PST is that of Los Angeles, and IST is that of India, as in
// Date::Manip, by which the tools of XMLTV read dates.
constexpr std::array timeZones{
    TimeZone{"UTC"_L1, 0h},
    TimeZone{"UT"_L1, 0h},
    TimeZone{"Z"_L1, 0h},
    TimeZone{"GMT"_L1, 0h},
    // Europe
    TimeZone{"WET"_L1, 0h},
    TimeZone{"WEST"_L1, 1h},
    TimeZone{"BST"_L1, 1h},
    TimeZone{"CET"_L1, 1h},
    TimeZone{"CEST"_L1, 2h},
    TimeZone{"MET"_L1, 1h},
    TimeZone{"MEST"_L1, 2h},
    TimeZone{"EET"_L1, 2h},
    TimeZone{"EEST"_L1, 3h},
    TimeZone{"MSK"_L1, 3h},
    TimeZone{"MSD"_L1, 4h},
    // Africa
    TimeZone{"WAT"_L1, 1h},
    TimeZone{"CAT"_L1, 2h},
    TimeZone{"SAST"_L1, 2h},
    TimeZone{"EAT"_L1, 3h},
    // Asia
    TimeZone{"IDT"_L1, 3h},
    TimeZone{"PKT"_L1, 5h},
    TimeZone{"IST"_L1, 5h + 30min},
    TimeZone{"WIB"_L1, 7h},
    TimeZone{"WITA"_L1, 8h},
    TimeZone{"HKT"_L1, 8h},
    TimeZone{"WIT"_L1, 9h},
    TimeZone{"JST"_L1, 9h},
    TimeZone{"KST"_L1, 9h},
    // Australia and the Pacific
    TimeZone{"AWST"_L1, 8h},
    TimeZone{"ACST"_L1, 9h + 30min},
    TimeZone{"ACDT"_L1, 10h + 30min},
    TimeZone{"AEST"_L1, 10h},
    TimeZone{"AEDT"_L1, 11h},
    TimeZone{"CHST"_L1, 10h},
    TimeZone{"NZST"_L1, 12h},
    TimeZone{"NZDT"_L1, 13h},
    TimeZone{"SST"_L1, -11h},
    TimeZone{"HST"_L1, -10h},
    TimeZone{"HDT"_L1, -9h},
    // America
    TimeZone{"AKST"_L1, -9h},
    TimeZone{"AKDT"_L1, -8h},
    TimeZone{"PST"_L1, -8h},
    TimeZone{"PDT"_L1, -7h},
    TimeZone{"MST"_L1, -7h},
    TimeZone{"MDT"_L1, -6h},
    TimeZone{"CST"_L1, -6h},
    TimeZone{"CDT"_L1, -5h},
    TimeZone{"EST"_L1, -5h},
    TimeZone{"EDT"_L1, -4h},
    TimeZone{"AST"_L1, -4h},
    TimeZone{"ADT"_L1, -3h},
    TimeZone{"NST"_L1, -(3h + 30min)},
    TimeZone{"NDT"_L1, -(2h + 30min)},
};

} // namespace

std::optional<seconds> timeZoneOffset(QStringView name)
{
    const auto found = std::ranges::find_if(timeZones, [name](const TimeZone &zone) {
        return name.compare(zone.name, Qt::CaseInsensitive) == 0;
    });
    if (found == timeZones.end())
        return std::nullopt;
    return found->utcOffset;
}

QString timeZoneNames()
{
    QStringList names;
    for (const TimeZone &zone : timeZones)
        names += zone.name;
    return names.join(u", "_s);
}

} // namespace tvguide
