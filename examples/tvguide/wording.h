#ifndef TVGUIDE_WORDING_H
#define TVGUIDE_WORDING_H

#include "episodenumber.h"

#include <QLocale>
#include <QString>

#include <chrono>

namespace tvguide {

// The screen's own words, in one language. "%1" and "%2" stand for what is filled in.
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
    QString season;
    QString episode;
    QString part;
    QString numberOfTotal;
    QString alsoInSlot;
    QString isNew;
    QString premiere;

    const QString &title(const QString &title) const { return title.isEmpty() ? untitled : title; }
    QString duration(std::chrono::seconds length) const;
    QString date(QDate date) const;
    QString episodeNumber(const EpisodeNumber &number) const;
    QString alsoInSlotTitles(const QStringList &titles) const;
};

// Returns Russian words for "ru" and its variants, English words for every other language.
Wording wordingFor(const QString &language);

} // namespace tvguide

#endif
