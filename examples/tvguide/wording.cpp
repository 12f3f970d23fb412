#include "wording.h"

#include <QDate>
#include <QStringList>

namespace tvguide {

using namespace Qt::StringLiterals;

QString Wording::duration(std::chrono::seconds length) const
{
    constexpr qint64 minutesPerHour = 60;
    const qint64 all = std::chrono::ceil<std::chrono::minutes>(length).count();
    QStringList parts;
    if (all >= minutesPerHour)
        parts += hours.arg(all / minutesPerHour);
    if (all % minutesPerHour > 0 || all == 0)
        parts += minutes.arg(all % minutesPerHour);
    return parts.join(u' ');
}

QString Wording::date(QDate date) const
{
    return QLocale(language).toString(date, u"dddd, d MMMM");
}

// Returns a text such as "Season 2, episode 5 of 10", without the counts that are not given.
QString Wording::episodeNumber(const EpisodeNumber &number) const
{
    QStringList counts;
    const auto add = [&](const QString &name, const EpisodeNumber::Count &count) {
        if (count.number == 0)
            return;
        const QString shown = QString::number(count.number);
        counts += name.arg(
            count.total == 0 ? shown : numberOfTotal.arg(shown, QString::number(count.total)));
    };
    add(season, number.season);
    add(episode, number.episode);
    add(part, number.part);
    QString sentence = counts.join(u", "_s);
    if (!sentence.isEmpty())
        sentence.front() = sentence.front().toUpper();
    return sentence;
}

QString Wording::alsoInSlotTitles(const QStringList &titles) const
{
    QStringList shown;
    for (const QString &text : titles)
        shown += title(text);
    return shown.isEmpty() ? QString() : alsoInSlot.arg(shown.join(u", "_s));
}

Wording wordingFor(const QString &language)
{
    if (language.startsWith("ru"_L1, Qt::CaseInsensitive)) {
        return {.language = QLocale::Russian,
                .guide = u"Программа передач"_s,
                .untitled = u"Без названия"_s,
                .noDescription = u"Описания этой передачи нет."_s,
                .hours = u"%1 ч"_s,
                .minutes = u"%1 мин"_s,
                .remaining = u"осталось %1"_s,
                .startsIn = u"начнётся через %1"_s,
                .over = u"уже прошла"_s,
                .season = u"сезон %1"_s,
                .episode = u"серия %1"_s,
                .part = u"часть %1"_s,
                .numberOfTotal = u"%1 из %2"_s,
                .alsoInSlot = u"Также: %1"_s,
                .isNew = u"новое"_s,
                .premiere = u"премьера"_s};
    }
    return {.language = QLocale::English,
            .guide = u"Programme guide"_s,
            .untitled = u"Untitled"_s,
            .noDescription = u"There is no description of this programme."_s,
            .hours = u"%1 h"_s,
            .minutes = u"%1 min"_s,
            .remaining = u"%1 left"_s,
            .startsIn = u"starts in %1"_s,
            .over = u"is over"_s,
            .season = u"season %1"_s,
            .episode = u"episode %1"_s,
            .part = u"part %1"_s,
            .numberOfTotal = u"%1 of %2"_s,
            .alsoInSlot = u"Also: %1"_s,
            .isNew = u"new"_s,
            .premiere = u"premiere"_s};
}

} // namespace tvguide
