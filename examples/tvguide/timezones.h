#ifndef TVGUIDE_TIMEZONES_H
#define TVGUIDE_TIMEZONES_H

#include <QString>
#include <QStringView>

#include <chrono>
#include <optional>

namespace tvguide {

// Returns how far a clock in the named time zone is ahead of UTC, or nothing if the name is
// unknown. Upper and lower case are equal.
std::optional<std::chrono::seconds> timeZoneOffset(QStringView name);

// Returns all known names, separated by commas, for a message.
QString timeZoneNames();

} // namespace tvguide

#endif
