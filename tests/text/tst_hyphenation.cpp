#include "hyphenationpoints.h"
#include "text/hyphenation_p.h"

#include <QTest>

#include <algorithm>
#include <array>

using namespace ovelin;

using ovelin::tests::hyphenationPoints;
using ovelin::tests::lastPointThatFits;

namespace {

constexpr int unlimited = 1'000'000;

using Points = QList<int>;

auto fitsUpTo(int limit)
{
    return [limit](qsizetype kept) { return kept <= limit; };
}

// Returns the hyphenation point of the word on a line that has room for `limit` characters and a hyphen.
int pointAt(const QString &word, int limit)
{
    return hyphenationPoint(word, fitsUpTo(std::min(limit, int(word.size()))));
}

} // namespace

class tst_Hyphenation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void classifiesEveryRussianLetter_data();
    void classifiesEveryRussianLetter();
    void classifiesNothingElse();
    void wordsEndAtSpacesSeparatorsAndHyphensBeforeNoDigit_data();
    void wordsEndAtSpacesSeparatorsAndHyphensBeforeNoDigit();
    void wordBreakPatternHasTheExpectedText();

    void findsThePointsOfAWord_data();
    void findsThePointsOfAWord();
    void wordWithoutPointGivesMinusOne_data();
    void wordWithoutPointGivesMinusOne();
    void givesZeroIfNoPointFits();
    void countsCharactersOfTheLowerCasedWord_data();
    void countsCharactersOfTheLowerCasedWord();
    void givesThePointsOfTheRulesForEveryClassString();
};

void tst_Hyphenation::classifiesEveryRussianLetter_data()
{
    QTest::addColumn<QString>("letters");
    QTest::addColumn<QChar>("letterClass");

    QTest::newRow("vowels") << QStringLiteral("аеёиоуыэюя") << QChar(u'g');
    QTest::newRow("consonants") << QStringLiteral("бвгджзклмнпрстфхцчшщ") << QChar(u's');
    QTest::newRow("short i and signs") << QStringLiteral("йьъ") << QChar(u'x');
}

void tst_Hyphenation::classifiesEveryRussianLetter()
{
    QFETCH(QString, letters);
    QFETCH(QChar, letterClass);

    for (const QChar letter : letters)
        QCOMPARE(hyphenationLetterClasses.value(letter), letterClass);
    QCOMPARE(hyphenationLetterClasses.keys(letterClass).size(), letters.size());
}

void tst_Hyphenation::classifiesNothingElse()
{
    QCOMPARE(hyphenationLetterClasses.size(), 33);
    QVERIFY(!hyphenationLetterClasses.contains(QChar(u'А')));
    QVERIFY(!hyphenationLetterClasses.contains(QChar(u'g')));
}

void tst_Hyphenation::wordsEndAtSpacesSeparatorsAndHyphensBeforeNoDigit_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("expected");

    QTest::newRow("none") << QStringLiteral("abc") << 0 << 3;
    QTest::newRow("space") << QStringLiteral("ab c") << 0 << 2;
    QTest::newRow("line separator") << QStringLiteral("ab\u2028c") << 0 << 2;
    QTest::newRow("hyphen before a letter") << QStringLiteral("ab-c") << 0 << 2;
    QTest::newRow("hyphen before a space") << QStringLiteral("ab- c") << 0 << 2;
    QTest::newRow("hyphen before a hyphen") << QStringLiteral("ab--") << 0 << 2;
    QTest::newRow("hyphen before a newline") << QStringLiteral("ab-\nc") << 0 << 2;
    QTest::newRow("hyphen before a separator") << QStringLiteral("ab-\u2028c") << 0 << 2;
    QTest::newRow("hyphen before a digit") << QStringLiteral("ab-1") << 0 << 4;
    QTest::newRow("range of numbers") << QStringLiteral("10-20 c") << 0 << 5;
    QTest::newRow("hyphen before an Arabic digit") << QStringLiteral("ab-\u0661") << 0 << 2;
    QTest::newRow("hyphen at the end") << QStringLiteral("ab-") << 0 << 2;
    QTest::newRow("hyphen before a character of two units")
        << QStringLiteral("ab-\U0001F600") << 0 << 2;
    QTest::newRow("no-break space") << QStringLiteral("ab\u00a0c") << 0 << 4;
    QTest::newRow("tab and newline") << QStringLiteral("a\tb\nc") << 0 << 5;
    QTest::newRow("from the separator on") << QStringLiteral("a b c") << 1 << 1;
    QTest::newRow("after the separator") << QStringLiteral("a b c") << 2 << 3;
    QTest::newRow("digit and hyphen at the end") << QStringLiteral("ab-1-") << 0 << 4;
}

void tst_Hyphenation::wordsEndAtSpacesSeparatorsAndHyphensBeforeNoDigit()
{
    QFETCH(QString, text);
    QFETCH(int, from);
    QFETCH(int, expected);

    // A space stands after the text.
    QCOMPARE(int((text + u' ').indexOf(wordBreakPattern, from)), expected);
    QCOMPARE(int(wordEnd(text, from)), expected);
}

void tst_Hyphenation::wordBreakPatternHasTheExpectedText()
{
    QVERIFY(wordBreakPattern.isValid());
    QCOMPARE(wordBreakPattern.pattern(), QStringLiteral("( |\u2028|-[^\\d])"));
    QCOMPARE(wordBreakPattern.patternOptions(), QRegularExpression::NoPatternOption);
}

void tst_Hyphenation::findsThePointsOfAWord_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<Points>("points");

    // The Latin letters g, s and x count as members of the classes with these names. So each rule's classes,
    // written as letters, are a word to which the rule applies.
    QTest::newRow("xgg") << QStringLiteral("xgg") << Points{1};
    QTest::newRow("xgs") << QStringLiteral("xgs") << Points{1};
    QTest::newRow("xsg") << QStringLiteral("xsg") << Points{1};
    QTest::newRow("xss") << QStringLiteral("xss") << Points{1};
    QTest::newRow("ggg") << QStringLiteral("ggg") << Points{1};
    QTest::newRow("ggs") << QStringLiteral("ggs") << Points{1};
    QTest::newRow("ggx") << QStringLiteral("ggx") << Points{1};
    QTest::newRow("gssg") << QStringLiteral("gssg") << Points{2};
    QTest::newRow("sgsg") << QStringLiteral("sgsg") << Points{2};
    QTest::newRow("gsssg") << QStringLiteral("gsssg") << Points{2};
    QTest::newRow("gssssg") << QStringLiteral("gssssg") << Points{3};

    QTest::newRow("three vowels before vowel and consonant")
        << QStringLiteral("gggs") << Points{1, 2};
    QTest::newRow("two matches of a rule share a letter")
        << QStringLiteral("gssgssg") << Points{2, 5};
    QTest::newRow("three matches of a rule share letters")
        << QStringLiteral("sgsgsgsg") << Points{2, 4, 6};
    QTest::newRow("several rules") << QStringLiteral("xggxggs") << Points{1, 2, 4, 5};
    QTest::newRow("no match across an inserted hyphen") << QStringLiteral("xsggsg") << Points{1, 3};

    QTest::newRow("программа") << QStringLiteral("программа") << Points{4, 7};
    QTest::newRow("сообщение") << QStringLiteral("сообщение") << Points{2, 4, 6};
    QTest::newRow("район") << QStringLiteral("район") << Points{3};
    QTest::newRow("подъезд") << QStringLiteral("подъезд") << Points{4};
    QTest::newRow("стройка") << QStringLiteral("стройка") << Points{5};
    QTest::newRow("выход") << QStringLiteral("выход") << Points{2};
    QTest::newRow("lower case") << QStringLiteral("программирование") << Points{4, 7, 9, 11, 13};
    QTest::newRow("first letter upper case")
        << QStringLiteral("Программирование") << Points{4, 7, 9, 11, 13};
    QTest::newRow("upper case") << QStringLiteral("ПРОГРАММИРОВАНИЕ") << Points{4, 7, 9, 11, 13};
    QTest::newRow("eggs") << QStringLiteral("eggs") << Points{2};

    QTest::newRow("with its space") << QStringLiteral("программа ") << Points{4, 7};
    QTest::newRow("with its separator") << QStringLiteral("программа\u2028") << Points{4, 7};
    QTest::newRow("hyphen at its end") << QStringLiteral("программа-") << Points{4, 7, 9};
    QTest::newRow("only the hyphen at its end") << QStringLiteral("да-") << Points{2};
    QTest::newRow("own hyphen moves the later points to the left")
        << QStringLiteral("ааа-1ааа ") << Points{1, 3, 5};
    QTest::newRow("two own hyphens") << QStringLiteral("да-1-2ааа ") << Points{2, 3, 5};
}

void tst_Hyphenation::findsThePointsOfAWord()
{
    QFETCH(QString, word);
    QFETCH(Points, points);

    int previous = 0;
    for (const int point : points) {
        QCOMPARE(pointAt(word, point - 1), previous);
        QCOMPARE(pointAt(word, point), point);
        previous = point;
    }
    QCOMPARE(pointAt(word, unlimited), points.last());
}

void tst_Hyphenation::wordWithoutPointGivesMinusOne_data()
{
    QTest::addColumn<QString>("word");

    QTest::newRow("empty") << QString();
    QTest::newRow("digits") << QStringLiteral("2024 ");
    QTest::newRow("punctuation") << QStringLiteral("!?,. ");
    QTest::newRow("Latin") << QStringLiteral("television ");
    QTest::newRow("one letter") << QStringLiteral("я ");
    QTest::newRow("two letters") << QStringLiteral("ая ");
    QTest::newRow("consonants") << QStringLiteral("вздрж ");
    QTest::newRow("one vowel") << QStringLiteral("взгляд ");
    QTest::newRow("signs") << QStringLiteral("йьъйьъ ");
    QTest::newRow("lone space") << QStringLiteral(" ");
    QTest::newRow("letters with others between") << QStringLiteral("п.р.о.г.р.а ");
    QTest::newRow("five consonants") << QStringLiteral("gsssssg ");
}

void tst_Hyphenation::wordWithoutPointGivesMinusOne()
{
    QFETCH(QString, word);

    QCOMPARE(pointAt(word, unlimited), -1);
    QCOMPARE(pointAt(word, 0), -1);
}

void tst_Hyphenation::givesZeroIfNoPointFits()
{
    const QString word = QStringLiteral("программа ");
    QCOMPARE(pointAt(word, 3), 0);
    QCOMPARE(pointAt(word, 0), 0);
    QCOMPARE(pointAt(word, -1), 0);
}

void tst_Hyphenation::countsCharactersOfTheLowerCasedWord_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<int>("kept");

    // In lower case İ (U+0130) is two characters, so that each point after it moves one character to the right.
    QTest::newRow("one longer letter") << QStringLiteral("İпрограмма ") << 9;
    QTest::newRow("two longer letters") << QStringLiteral("İİпрограмма ") << 11;
    QTest::newRow("point at the end of the word") << QStringLiteral("İİ--") << 4;
    QTest::newRow("point after the end of the word") << QStringLiteral("İİİ-") << 0;
    QTest::newRow("second point after the end") << QStringLiteral("программаİİİ-") << 7;
}

void tst_Hyphenation::countsCharactersOfTheLowerCasedWord()
{
    QFETCH(QString, word);
    QFETCH(int, kept);

    QCOMPARE(word.toLower().size(), word.size() + word.count(QChar(u'\u0130')));
    QCOMPARE(pointAt(word, unlimited), kept);
}

void tst_Hyphenation::givesThePointsOfTheRulesForEveryClassString()
{
    const std::array letters{u'g', u's', u'x'};
    constexpr int longest = 8;

    QStringList words{QString()};
    for (int length = 1; length <= longest; ++length) {
        QStringList longer;
        for (const QString &word : std::as_const(words)) {
            for (const char16_t letter : letters)
                longer.append(word + letter);
        }
        words = longer;

        for (const QString &word : std::as_const(words)) {
            const Points points = hyphenationPoints(word);
            for (int limit = 0; limit <= length; ++limit) {
                QVERIFY2(pointAt(word, limit) == lastPointThatFits(points, fitsUpTo(limit)),
                         qPrintable(word));
            }
        }
    }
}

QTEST_MAIN(tst_Hyphenation)

#include "tst_hyphenation.moc"
