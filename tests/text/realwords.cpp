#include "realwords.h"

#include <QDate>
#include <QFile>
#include <QLocale>

namespace ovelin::tests {

using namespace Qt::StringLiterals;

namespace {

// Qt's words in each language of a script: the names of the language, its territory, its currency, the days
// and the months, and some dates.
QStringList localNames(QLocale::Script script)
{
    QStringList names;
    for (const QLocale &locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, script, QLocale::AnyTerritory)) {
        names += locale.nativeLanguageName();
        names += locale.nativeTerritoryName();
        names += locale.currencySymbol(QLocale::CurrencyDisplayName);
        for (int day = Qt::Monday; day <= Qt::Sunday; ++day)
            names += {locale.dayName(day), locale.dayName(day, QLocale::ShortFormat)};
        for (int month = 1; month <= 12; ++month) {
            names += {locale.monthName(month), locale.standaloneMonthName(month)};
            names += locale.toString(QDate(2024, month, 2 * month), QLocale::LongFormat);
        }
    }
    names.removeDuplicates();
    names.removeAll(QString());
    return names;
}

// The English names of all languages and territories.
QStringList englishNames()
{
    QStringList names;
    for (int language = QLocale::C + 1; language <= QLocale::LastLanguage; ++language)
        names += QLocale::languageToString(QLocale::Language(language));
    for (int territory = QLocale::AnyTerritory + 1; territory <= QLocale::LastTerritory;
         ++territory)
        names += QLocale::territoryToString(QLocale::Territory(territory));
    return names;
}

// Returns lines from all parts of a file, without the flags after a dictionary's words. Returns nothing if
// the file is missing.
QStringList linesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    constexpr int mostLines = 2000;
    QStringList lines;
    for (int i = 0; i < mostLines; ++i) {
        file.seek(file.size() * i / mostLines);
        file.readLine(); // the rest of the line at this position
        const QString line = QString::fromUtf8(file.readLine()).section(u'/', 0, 0).simplified();
        if (!line.isEmpty())
            lines.append(line);
    }
    lines.removeDuplicates();
    return lines;
}

// Emoji of several characters, most of which a font shows as one glyph.
QStringList joinedEmoji()
{
    return {
        u"\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466"_s, // a family of four
        u"\U0001F469\u200D\u2764\uFE0F\u200D\U0001F48B\u200D\U0001F468"_s,
        u"\U0001F9D1\U0001F3FD\u200D\U0001F91D\u200D\U0001F9D1\U0001F3FB"_s, // two skin tones
        u"\U0001F469\U0001F3FE\u200D\U0001F680"_s,
        u"\U0001F3F3\uFE0F\u200D\U0001F308"_s, // a flag of two emoji
        u"\U0001F1F7\U0001F1FA"_s,             // flags of two letters
        u"\U0001F1F3\U0001F1F4\U0001F1F8\U0001F1EA"_s,
        u"\U0001F3F4\U000E0067\U000E0062\U000E0073\U000E0063\U000E0074\U000E007F"_s, // a flag of tags
        u"1\uFE0F\u20E3"_s,                                                          // keycaps
        u"#\uFE0F\u20E3"_s,
        u"\U0001F44D\U0001F3FF"_s,
        u"\U0001F600\U0001F601\U0001F602"_s,
        u"\u2600\uFE0F"_s,
        u"\u2600\uFE0E"_s,
        u"\u270C\U0001F3FC"_s,
        u"12"_s,
    };
}

QStringList knownWords(Script script)
{
    switch (script) {
    case Script::Latin:
        return englishNames() + localNames(QLocale::LatinScript);
    case Script::Cyrillic:
        return localNames(QLocale::CyrillicScript);
    case Script::Greek:
        return localNames(QLocale::GreekScript);
    case Script::Hebrew:
        return localNames(QLocale::HebrewScript);
    case Script::Arabic:
        return localNames(QLocale::ArabicScript);
    case Script::Devanagari:
        return localNames(QLocale::DevanagariScript);
    case Script::Thai:
        return localNames(QLocale::ThaiScript);
    case Script::Chinese:
        return localNames(QLocale::SimplifiedHanScript) + localNames(QLocale::TraditionalHanScript);
    case Script::Japanese:
        return localNames(QLocale::JapaneseScript);
    case Script::Korean:
        return localNames(QLocale::KoreanScript);
    case Script::Emoji:
        return joinedEmoji();
    }
    return {};
}

} // namespace

bool hasSpaces(Script script)
{
    using enum Script;
    return script != Thai && script != Chinese && script != Japanese && script != Emoji;
}

QStringList wordFiles(Script script)
{
    switch (script) {
    case Script::Cyrillic:
        return {u"/usr/share/hunspell/ru_RU.dic"_s, u"/usr/share/games/fortunes/ru/knowledge"_s};
    case Script::Hebrew:
        return {u"/usr/share/hunspell/he_IL.dic"_s};
    case Script::Arabic:
        return {u"/usr/share/hunspell/ar.dic"_s};
    case Script::Devanagari:
        return {u"/usr/share/hunspell/hi_IN.dic"_s};
    case Script::Thai:
        return {u"/usr/share/hunspell/th_TH.dic"_s};
    default:
        return {};
    }
}

QStringList wordsOf(Script script)
{
    QStringList words = knownWords(script);
    for (const QString &file : wordFiles(script))
        words += linesOf(file);
    return words;
}

} // namespace ovelin::tests
