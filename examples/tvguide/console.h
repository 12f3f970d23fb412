#ifndef TVGUIDE_CONSOLE_H
#define TVGUIDE_CONSOLE_H

#include <QString>

namespace tvguide {

// Prints one line on standard output, in UTF-8 in every locale.
void print(const QString &line);

// Prints one line on standard error, in UTF-8 in every locale.
void complain(const QString &line);

} // namespace tvguide

#endif
