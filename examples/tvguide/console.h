#ifndef TVGUIDE_CONSOLE_H
#define TVGUIDE_CONSOLE_H

#include <QString>

namespace tvguide {

// One line on standard output, in UTF-8 whatever the locale.
void print(const QString &line);

// One line on standard error.
void complain(const QString &line);

} // namespace tvguide

#endif
