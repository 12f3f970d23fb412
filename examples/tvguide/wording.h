#ifndef TVGUIDE_WORDING_H
#define TVGUIDE_WORDING_H

#include <QLocale>
#include <QString>

#include <chrono>

namespace tvguide {

// What the screen itself says, in one language.
struct Wording
{
    QLocale::Language language;
    QString guide;
    QString untitled;
    QString noDescription;
    QString hours;
    QString minutes;
    QString remaining;
    QString startsIn;
    QString over;

    QString duration(std::chrono::seconds length) const;
    QString date(QDate date) const;
};

// Russian for "ru" and its variants, English for every other language.
Wording wordingFor(const QString &language);

} // namespace tvguide

#endif
