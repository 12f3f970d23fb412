#ifndef TVGUIDE_LANGUAGECHOICE_H
#define TVGUIDE_LANGUAGECHOICE_H

#include <QString>
#include <QStringView>

namespace tvguide {

// Chooses one of several texts that say the same in different languages: the first in the preferred
// language, else the first without a language, else the first. Empty texts do not count.
class LanguageChoice
{
public:
    explicit LanguageChoice(const QString &preferredLanguage);

    // A language is a code such as "ru", "ru-RU" or "ru_RU"; all of these match the preferred "ru".
    void offer(QStringView language, const QString &text);

    const QString &text() const { return m_text; }

private:
    enum Rank { None, Foreign, Unknown, Preferred };

    Rank rank(QStringView language) const;

    QString m_preferredLanguage;
    QString m_text;
    Rank m_rank = None;
};

} // namespace tvguide

#endif
