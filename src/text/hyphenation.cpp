#include "hyphenation_p.h"

#include <algorithm>
#include <iterator>

namespace ovelin {

using namespace Qt::StringLiterals;

namespace {

// The name of a class is the initial of its Russian word: g for vowels (glasnye), s for consonants
// (soglasnye). The short i and the two signs are in class x. All other characters stand for themselves, so
// the Latin letters g, s and x in a word count as letters of these classes.
struct LetterClass
{
    char16_t letter;
    char16_t letterClass;
};

constexpr LetterClass letterClasses[] = {
    {u'а', u'g'}, {u'б', u's'}, {u'в', u's'}, {u'г', u's'}, {u'д', u's'}, {u'е', u'g'},
    {u'ё', u'g'}, {u'ж', u's'}, {u'з', u's'}, {u'и', u'g'}, {u'й', u'x'}, {u'к', u's'},
    {u'л', u's'}, {u'м', u's'}, {u'н', u's'}, {u'о', u'g'}, {u'п', u's'}, {u'р', u's'},
    {u'с', u's'}, {u'т', u's'}, {u'у', u'g'}, {u'ф', u's'}, {u'х', u's'}, {u'ц', u's'},
    {u'ч', u's'}, {u'ш', u's'}, {u'щ', u's'}, {u'ь', u'x'}, {u'ы', u'g'}, {u'ъ', u'x'},
    {u'э', u'g'}, {u'ю', u'g'}, {u'я', u'g'},
};

struct Rule
{
    QLatin1StringView before;
    QLatin1StringView after;
};

// In the order in which they apply: a later rule cannot match across a hyphen that an earlier one inserted.
// clang-format off: the rules stay aligned
constexpr Rule hyphenationRules[] = {
    {"xgg"_L1, "x-gg"_L1},     {"xgs"_L1, "x-gs"_L1},       {"xsg"_L1, "x-sg"_L1},
    {"xss"_L1, "x-ss"_L1},     {"ggg"_L1, "g-gg"_L1},       {"ggs"_L1, "g-gs"_L1},
    {"ggx"_L1, "g-gx"_L1},     {"gssg"_L1, "gs-sg"_L1},     {"sgsg"_L1, "sg-sg"_L1},
    {"gsssg"_L1, "gs-ssg"_L1}, {"gssssg"_L1, "gss-ssg"_L1},
};
// clang-format on

// One replacement leaves out matches that overlap. The second one finds them. A third one would only add points in
// rows of five or more vowels, where callers expect none.
constexpr int replacementsPerRule = 2;

// A hyphenation point can depend on characters up to hyphenationReach away: each replacement adds at most the
// length of the longest rule, less one, to this distance.
constexpr qsizetype longestRule = std::ranges::max(hyphenationRules, {}, [](const Rule &rule) {
                                      return rule.before.size();
                                  }).before.size();
constexpr qsizetype hyphenationReach =
    qsizetype(std::size(hyphenationRules)) * replacementsPerRule * (longestRule - 1);

// The points among this many characters of a long word are looked for first: few lines have more characters.
constexpr qsizetype usualPrefix = 64;

// A class string reserves memory for this many inserted hyphens.
constexpr qsizetype usualHyphenCount = 4;

QHash<QChar, QChar> makeLetterClasses()
{
    QHash<QChar, QChar> classes;
    for (const auto &[letter, letterClass] : letterClasses)
        classes[letter] = letterClass;
    return classes;
}

QString classString(QStringView word)
{
    QString classes = QString::fromRawData(word.data(), word.size()).toLower();
    classes.reserve(classes.size() + usualHyphenCount);
    for (QChar &letter : classes)
        letter = hyphenationLetterClasses.value(letter, letter);
    return classes;
}

void insertHyphens(QString &classes)
{
    for (const auto &[before, after] : hyphenationRules) {
        for (int i = 0; i < replacementsPerRule && classes.contains(before); ++i)
            classes.replace(before, after);
    }
}

// False only if the word has no hyphen and no letter of a class, and so no hyphenation point. This saves the
// search in words of other scripts, which can be long.
bool mayHavePoints(QStringView word)
{
    return std::ranges::any_of(word, [](QChar c) {
        return (c >= hyphen && c <= u'x') || (c >= u'\u0400' && c <= u'\u04ff');
    });
}

int lastPointThatFits(QStringView word,
                      qxp::function_ref<bool(qsizetype kept) const> fitsWithHyphen)
{
    QString classes = classString(word);
    insertHyphens(classes);

    qsizetype position = classes.indexOf(hyphen);
    if (position == -1)
        return -1;

    qsizetype point = 0;
    // A hyphen of the word itself counts like an inserted one, so the points after it lie one character
    // early.
    for (qsizetype hyphens = 0; position != -1 && fitsWithHyphen(position - hyphens); ++hyphens) {
        point = position - hyphens;
        position = classes.indexOf(hyphen, position + 1);
    }
    return static_cast<int>(point);
}

} // namespace

const QHash<QChar, QChar> hyphenationLetterClasses = makeLetterClasses();
const QRegularExpression wordBreakPattern(u"( |\u2028|-[^\\d])"_s);

qsizetype wordEnd(QStringView text, qsizetype from)
{
    // Spaces and line separators are found without the pattern, which costs more to start than this search.
    qsizetype position = from;
    while (position < text.size() && text.at(position) != u' ' && text.at(position) != lineSeparator
           && text.at(position) != hyphen) {
        ++position;
    }
    if (position == text.size() || text.at(position) != hyphen)
        return position;

    const qsizetype match = wordBreakPattern
                                .matchView(text, position, QRegularExpression::NormalMatch,
                                           QRegularExpression::DontCheckSubjectStringMatchOption)
                                .capturedStart();
    if (match >= 0)
        return match;
    return text.back() == hyphen ? text.size() - 1 : text.size();
}

int hyphenationPoint(QStringView word, qxp::function_ref<bool(qsizetype kept) const> fitsWithHyphen)
{
    if (!mayHavePoints(word))
        return -1;
    // A prefix of a long word has the points of the word, except within hyphenationReach of the prefix's end.
    for (qsizetype size = usualPrefix;; size *= 2) {
        const QStringView prefix = word.first(std::min(size + hyphenationReach, word.size()));
        bool isDecided = prefix.size() == word.size();
        const auto fits = [&](qsizetype kept) {
            const bool accepted = fitsWithHyphen(kept);
            isDecided = isDecided || (!accepted && kept <= size);
            return accepted;
        };
        const int point = lastPointThatFits(prefix, fits);
        if (isDecided)
            return point;
    }
}

} // namespace ovelin
