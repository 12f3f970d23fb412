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
                .over = u"уже прошла"_s};
    }
    return {.language = QLocale::English,
            .guide = u"Programme guide"_s,
            .untitled = u"Untitled"_s,
            .noDescription = u"There is no description of this programme."_s,
            .hours = u"%1 h"_s,
            .minutes = u"%1 min"_s,
            .remaining = u"%1 left"_s,
            .startsIn = u"starts in %1"_s,
            .over = u"is over"_s};
}

} // namespace tvguide
