#include "hyphenplaces.h"
#include "text/hyphenation_p.h"

#include <QTest>

#include <array>

using namespace ovelin;

using ovelin::tests::lastFittingPlace;
using ovelin::tests::placesOf;

namespace {

constexpr int unlimited = 1'000'000;

using Places = QList<int>;

auto fitsUpTo(int most)
{
    return [most](qsizetype kept) { return kept <= most; };
}

// The point of a word of which so many characters fit with a hyphen.
int pointAt(const QString &word, int most)
{
    return hyphenationPoint(word, fitsUpTo(most));
}

} // namespace

class tst_Hyphenation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void classifiesEveryRussianLetter_data();
    void classifiesEveryRussianLetter();
    void classifiesNothingElse();
    void wordsEndAtSpaceSeparatorAndHyphenWithoutDigit_data();
    void wordsEndAtSpaceSeparatorAndHyphenWithoutDigit();
    void wordBreakPatternIsBuiltFromItsTemplate();

    void findsThePlacesOfAWord_data();
    void findsThePlacesOfAWord();
    void wordWithoutPlaceIsRefused_data();
    void wordWithoutPlaceIsRefused();
    void nothingFitsIsNotTheSameAsNoPlace();
    void countsLettersThatAreLongerInLowerCaseOnce();
    void agreesOnEveryClassString();
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

void tst_Hyphenation::wordsEndAtSpaceSeparatorAndHyphenWithoutDigit_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("expected");

    QTest::newRow("none") << QStringLiteral("abc") << 0 << -1;
    QTest::newRow("space") << QStringLiteral("ab c") << 0 << 2;
    QTest::newRow("line separator") << QStringLiteral("ab\u2028c") << 0 << 2;
    QTest::newRow("hyphen before a letter") << QStringLiteral("ab-c") << 0 << 2;
    QTest::newRow("hyphen before a space") << QStringLiteral("ab- c") << 0 << 2;
    QTest::newRow("hyphen before a hyphen") << QStringLiteral("ab--") << 0 << 2;
    QTest::newRow("hyphen before a newline") << QStringLiteral("ab-\nc") << 0 << 2;
    QTest::newRow("hyphen before a separator") << QStringLiteral("ab-\u2028c") << 0 << 2;
    QTest::newRow("hyphen before a digit") << QStringLiteral("ab-1") << 0 << -1;
    QTest::newRow("range of numbers") << QStringLiteral("10-20 c") << 0 << 5;
    QTest::newRow("hyphen before an Arabic digit") << QStringLiteral("ab-\u0661") << 0 << 2;
    QTest::newRow("hyphen at the end") << QStringLiteral("ab-") << 0 << -1;
    QTest::newRow("hyphen before a character of two units")
        << QStringLiteral("ab-\U0001F600") << 0 << 2;
    QTest::newRow("no-break space") << QStringLiteral("ab\u00a0c") << 0 << -1;
    QTest::newRow("tab and newline") << QStringLiteral("a\tb\nc") << 0 << -1;
    QTest::newRow("from the separator on") << QStringLiteral("a b c") << 1 << 1;
    QTest::newRow("behind the separator") << QStringLiteral("a b c") << 2 << 3;
}

void tst_Hyphenation::wordsEndAtSpaceSeparatorAndHyphenWithoutDigit()
{
    QFETCH(QString, text);
    QFETCH(int, from);
    QFETCH(int, expected);

    QCOMPARE(int(text.indexOf(wordBreakPattern, from)), expected);
    QCOMPARE(int(wordBreak(text, from)), expected);
}

void tst_Hyphenation::wordBreakPatternIsBuiltFromItsTemplate()
{
    QVERIFY(wordBreakPattern.isValid());
    QCOMPARE(wordBreakPattern.pattern(), QStringLiteral("( |\u2028|-[^\\d])"));
    QCOMPARE(wordBreakPattern.patternOptions(), QRegularExpression::NoPatternOption);
}

void tst_Hyphenation::findsThePlacesOfAWord_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<Places>("places");

    // Latin g, s and x are taken for the classes of that name, so that a class string is a word.
    QTest::newRow("xgg") << QStringLiteral("xgg") << Places{1};
    QTest::newRow("xgs") << QStringLiteral("xgs") << Places{1};
    QTest::newRow("xsg") << QStringLiteral("xsg") << Places{1};
    QTest::newRow("xss") << QStringLiteral("xss") << Places{1};
    QTest::newRow("ggg") << QStringLiteral("ggg") << Places{1};
    QTest::newRow("ggs") << QStringLiteral("ggs") << Places{1};
    QTest::newRow("ggx") << QStringLiteral("ggx") << Places{1};
    QTest::newRow("gssg") << QStringLiteral("gssg") << Places{2};
    QTest::newRow("sgsg") << QStringLiteral("sgsg") << Places{2};
    QTest::newRow("gsssg") << QStringLiteral("gsssg") << Places{2};
    QTest::newRow("gssssg") << QStringLiteral("gssssg") << Places{3};

    QTest::newRow("three vowels before vowel and consonant")
        << QStringLiteral("gggs") << Places{1, 2};
    QTest::newRow("two of a kind share a letter") << QStringLiteral("gssgssg") << Places{2, 5};
    QTest::newRow("three of a kind share letters") << QStringLiteral("sgsgsgsg") << Places{2, 4, 6};
    QTest::newRow("several rules") << QStringLiteral("xggxggs") << Places{1, 2, 4, 5};
    QTest::newRow("no match across a hyphen") << QStringLiteral("xsggsg") << Places{1, 3};

    QTest::newRow("программа") << QStringLiteral("программа") << Places{4, 7};
    QTest::newRow("сообщение") << QStringLiteral("сообщение") << Places{2, 4, 6};
    QTest::newRow("район") << QStringLiteral("район") << Places{3};
    QTest::newRow("подъезд") << QStringLiteral("подъезд") << Places{4};
    QTest::newRow("стройка") << QStringLiteral("стройка") << Places{5};
    QTest::newRow("выход") << QStringLiteral("выход") << Places{2};
    QTest::newRow("lower case") << QStringLiteral("программирование") << Places{4, 7, 9, 11, 13};
    QTest::newRow("first letter upper case")
        << QStringLiteral("Программирование") << Places{4, 7, 9, 11, 13};
    QTest::newRow("upper case") << QStringLiteral("ПРОГРАММИРОВАНИЕ") << Places{4, 7, 9, 11, 13};
    QTest::newRow("eggs") << QStringLiteral("eggs") << Places{2};

    QTest::newRow("with its space") << QStringLiteral("программа ") << Places{4, 7};
    QTest::newRow("with its separator") << QStringLiteral("программа\u2028") << Places{4, 7};
    QTest::newRow("hyphen at its end") << QStringLiteral("программа-") << Places{4, 7, 9};
    QTest::newRow("only the hyphen at its end") << QStringLiteral("да-") << Places{2};
    QTest::newRow("own hyphen shifts the later places")
        << QStringLiteral("ааа-1ааа ") << Places{1, 3, 5};
    QTest::newRow("two own hyphens") << QStringLiteral("да-1-2ааа ") << Places{2, 3, 5};
}

void tst_Hyphenation::findsThePlacesOfAWord()
{
    QFETCH(QString, word);
    QFETCH(Places, places);

    int previous = 0;
    for (const int place : places) {
        QCOMPARE(pointAt(word, place - 1), previous);
        QCOMPARE(pointAt(word, place), place);
        previous = place;
    }
    QCOMPARE(pointAt(word, unlimited), places.last());
}

void tst_Hyphenation::wordWithoutPlaceIsRefused_data()
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

void tst_Hyphenation::wordWithoutPlaceIsRefused()
{
    QFETCH(QString, word);

    QCOMPARE(pointAt(word, unlimited), -1);
    QCOMPARE(pointAt(word, 0), -1);
}

void tst_Hyphenation::nothingFitsIsNotTheSameAsNoPlace()
{
    const QString word = QStringLiteral("программа ");
    QCOMPARE(pointAt(word, 3), 0);
    QCOMPARE(pointAt(word, 0), 0);
    QCOMPARE(pointAt(word, -1), 0);
}

void tst_Hyphenation::countsLettersThatAreLongerInLowerCaseOnce()
{
    const QString word = QStringLiteral("İпрограмма ");
    QCOMPARE(word.toLower().size(), word.size() + 1);
    QCOMPARE(pointAt(word, unlimited), int(QStringLiteral("İпрограм").size()));

    const QString shortWord = QStringLiteral("İİİ-");
    QCOMPARE(pointAt(shortWord, unlimited), 3);
}

void tst_Hyphenation::agreesOnEveryClassString()
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
            const Places places = placesOf(word);
            for (int most = 0; most <= length; ++most) {
                QVERIFY2(pointAt(word, most) == lastFittingPlace(places, fitsUpTo(most)),
                         qPrintable(word));
            }
        }
    }
}

QTEST_MAIN(tst_Hyphenation)

#include "tst_hyphenation.moc"
