#include "languagechoice.h"

namespace tvguide {

LanguageChoice::LanguageChoice(const QString &preferredLanguage)
    : m_preferredLanguage(preferredLanguage)
{
}

void LanguageChoice::offer(QStringView language, const QString &text)
{
    const Rank rank = this->rank(language);
    if (text.isEmpty() || rank <= m_rank)
        return;
    m_rank = rank;
    m_text = text;
}

LanguageChoice::Rank LanguageChoice::rank(QStringView language) const
{
    if (language.isEmpty())
        return Unknown;
    if (!language.startsWith(m_preferredLanguage, Qt::CaseInsensitive))
        return Foreign;
    const QStringView region = language.sliced(m_preferredLanguage.size());
    return region.isEmpty() || region.startsWith(u'-') || region.startsWith(u'_') ? Preferred
                                                                                  : Foreign;
}

} // namespace tvguide
