#include "support/shapercalls.h"
#include "text/textruler_p.h"
#include "textsupport.h"

#include <QTest>

using namespace ovelin;
using namespace ovelin::tests;

namespace {

constexpr qsizetype stretchLength = 40;

QFont stretchedFont(int stretch, double percentage = 0)
{
    QFont font = spacedFont(QFont::PercentageSpacing, percentage);
    font.setStretch(stretch);
    return font;
}

} // namespace

class tst_TextRuler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void readsWhatIsMeasured_data();
    void readsWhatIsMeasured();
    void readsOnlyReadableCharacters_data();
    void readsOnlyReadableCharacters();
    void readsUpToWhatItCannotRead();
    void readsNoPartOfALigature();
    void readsOnlyFontsThatKeepLetters_data();
    void readsOnlyFontsThatKeepLetters();

    void shapesAStretchOnce();
    void shapesLongerStretchesForLongerRanges();
    void shapesUnreadableTextOnce();
    void readsOnAfterAnInsertion();

    void scaleIsThatOfStretchAndSpacing_data();
    void scaleIsThatOfStretchAndSpacing();
    void toleranceGrowsWithTheFont_data();
    void toleranceGrowsWithTheFont();
    void toleranceIsLessWhereNothingActsOnTheEnds_data();
    void toleranceIsLessWhereNothingActsOnTheEnds();
};

void tst_TextRuler::initTestCase()
{
    QVERIFY(isTestFontInstalled());
}

void tst_TextRuler::readsWhatIsMeasured_data()
{
    QTest::addColumn<QFont>("font");

    QFont words = pixelFont();
    words.setWordSpacing(30);
    QFont bold = pixelFont();
    bold.setBold(true);
    QTest::newRow("plain") << pixelFont();
    QTest::newRow("bold") << bold;
    QTest::newRow("large") << pixelFont(100);
    QTest::newRow("wide") << stretchedFont(200);
    QTest::newRow("words apart") << words;
    QTest::newRow("letters apart") << spacedFont(QFont::AbsoluteSpacing, 5);
    QTest::newRow("letters close") << spacedFont(QFont::AbsoluteSpacing, -3);
}

void tst_TextRuler::readsWhatIsMeasured()
{
    QFETCH(QFont, font);
    const QString text = QStringLiteral("Тёплый AVATAR, «Ёлка» — 1-2  To. Ты");
    TextRuler ruler(font);

    for (qsizetype from = 0; from < text.size(); ++from) {
        for (qsizetype to = from; to <= text.size(); ++to) {
            const auto reading = ruler.advance(text, from, to, stretchLength);
            QVERIFY(reading);
            const double measured = advance(text.sliced(from, to - from), font);
            QVERIFY2(std::abs(*reading - measured) <= ruler.tolerance(text, from, to),
                     qPrintable(text.sliced(from, to - from)));
        }
    }
}

void tst_TextRuler::readsOnlyReadableCharacters_data()
{
    QTest::addColumn<QChar>("character");
    QTest::addColumn<bool>("readable");

    const auto row = [](char16_t c, bool readable) {
        QTest::addRow("U+%04X", c) << QChar(c) << readable;
    };
    // Latin, with neither controls nor the soft hyphen,
    row(0x001f, false);
    row(0x0020, true);
    row(0x007e, true);
    row(0x007f, false);
    row(0x009f, false);
    row(0x00a0, true);
    row(0x00ac, true);
    row(0x00ad, false);
    row(0x00ae, true);
    row(0x024f, true);
    row(0x0250, false);
    // Greek and Cyrillic without marks,
    row(0x036f, false);
    row(0x0370, true);
    row(0x0482, true);
    row(0x0483, false);
    row(0x0489, false);
    row(0x048a, true);
    row(0x052f, true);
    row(0x0530, false);
    // punctuation without spaces of no width and separators, currencies, and the numero sign.
    row(0x200f, false);
    row(0x2010, true);
    row(0x2027, true);
    row(0x2028, false);
    row(0x202f, false);
    row(0x2030, true);
    row(0x205e, true);
    row(0x205f, false);
    row(0x209f, false);
    row(0x20a0, true);
    row(0x20bf, true);
    row(0x20c0, false);
    row(0x2115, false);
    row(0x2116, true);
    row(0x2117, false);
}

void tst_TextRuler::readsOnlyReadableCharacters()
{
    QFETCH(QChar, character);
    QFETCH(bool, readable);
    const QString text = QStringLiteral("ab") + character;
    TextRuler ruler(pixelFont());

    QCOMPARE(TextRuler::canRead(QStringView(text)), readable);
    QCOMPARE(ruler.advance(text, 0, 3, stretchLength).has_value(), readable);
}

void tst_TextRuler::readsUpToWhatItCannotRead()
{
    const QString text = QStringLiteral("Новости\u0301 дня");
    TextRuler ruler(pixelFont());

    QVERIFY(!ruler.advance(text, 0, 9, stretchLength));
    QCOMPARE(ruler.advance(text, 0, 7, stretchLength).value_or(-1), advance(text.first(7)));
    QCOMPARE(ruler.advance(text, 8, 12, stretchLength).value_or(-1), advance(text.sliced(8)));
}

void tst_TextRuler::readsNoPartOfALigature()
{
    const QString text = QStringLiteral("office");
    TextRuler ruler(pixelFont());

    for (qsizetype from = 0; from < text.size(); ++from) {
        for (qsizetype to = from + 1; to <= text.size(); ++to) {
            const bool cuts = from == 2 || from == 3 || to == 2 || to == 3;
            QCOMPARE(ruler.advance(text, from, to, stretchLength).has_value(), !cuts);
        }
    }
}

void tst_TextRuler::readsOnlyFontsThatKeepLetters_data()
{
    QTest::addColumn<QFont::Capitalization>("capitalization");
    QTest::addColumn<bool>("readable");

    QTest::newRow("as they are") << QFont::MixedCase << true;
    QTest::newRow("capitals") << QFont::AllUppercase << false;
    QTest::newRow("no capitals") << QFont::AllLowercase << false;
    QTest::newRow("small capitals") << QFont::SmallCaps << false;
    QTest::newRow("first letters") << QFont::Capitalize << false;
}

void tst_TextRuler::readsOnlyFontsThatKeepLetters()
{
    QFETCH(const QFont::Capitalization, capitalization);
    QFETCH(const bool, readable);
    QFont font = pixelFont();
    font.setCapitalization(capitalization);

    QCOMPARE(TextRuler::canRead(font), readable);
}

void tst_TextRuler::shapesAStretchOnce()
{
    const QString text = QStringLiteral("абвгд").repeated(20);
    TextRuler ruler(pixelFont());
    const int callsPerText = countShaperCalls([&] { advance(text); });
    if (callsPerText == 0)
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");

    const int calls = countShaperCalls([&] {
        for (qsizetype from = 0; from < stretchLength; ++from) {
            for (qsizetype to = from; to <= stretchLength; ++to)
                ruler.advance(text, from, to, stretchLength);
        }
    });
    QCOMPARE(calls, callsPerText);

    // What ends behind it, or begins before the next one, is in another stretch.
    const auto read = [&](qsizetype from, qsizetype to) {
        return countShaperCalls([&] { ruler.advance(text, from, to, stretchLength); });
    };
    QCOMPARE(read(30, stretchLength + 1), callsPerText);
    QCOMPARE(read(30, 30 + stretchLength), 0);
    QCOMPARE(read(29, stretchLength), callsPerText);
}

void tst_TextRuler::shapesLongerStretchesForLongerRanges()
{
    const QString text = QStringLiteral("абвгд").repeated(40);
    constexpr qsizetype from = 10;
    TextRuler ruler(pixelFont());
    if (countShaperCalls([&] { advance(text); }) == 0)
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");

    const auto callsFor = [&](qsizetype size) {
        return countShaperCalls([&] { ruler.advance(text, from, from + size, stretchLength); });
    };
    QVERIFY(callsFor(45) > 0);
    QCOMPARE(callsFor(90), 0);
    QVERIFY(callsFor(91) > 0);
    QCOMPARE(callsFor(182), 0);
}

void tst_TextRuler::shapesUnreadableTextOnce()
{
    const QString text = QStringLiteral("аб\u0301вгдежзийк");
    TextRuler ruler(pixelFont());
    ruler.advance(text, 0, 1, stretchLength);

    // That it ends early is known from its beginning on, and from there only.
    const int calls = countShaperCalls([&] {
        for (qsizetype to = 1; to <= text.size(); ++to)
            QCOMPARE(ruler.advance(text, 0, to, stretchLength).has_value(), to <= 2);
    });
    QCOMPARE(calls, 0);
    QCOMPARE(ruler.advance(text, 1, 2, stretchLength).value_or(-1), advance(text.sliced(1, 1)));
    QVERIFY(!ruler.advance(text, 1, 3, stretchLength));
}

// What stands before the inserted characters is no longer read from that stretch.
void tst_TextRuler::readsOnAfterAnInsertion()
{
    QString text = QStringLiteral("программа передач");
    TextRuler ruler(pixelFont());
    ruler.advance(text, 0, 5, stretchLength);
    text.insert(4, QStringLiteral("-\u2028"));
    const int calls = countShaperCalls([&] {
        ruler.textInserted(6, 2);
        for (qsizetype from = 6; from < text.size(); ++from) {
            for (qsizetype to = from; to <= text.size(); ++to) {
                QCOMPARE(ruler.advance(text, from, to, stretchLength).value_or(-1),
                         advance(text.sliced(from, to - from)));
            }
        }
    });
    const int measurements = countShaperCalls([&] {
        for (qsizetype from = 6; from < text.size(); ++from) {
            for (qsizetype to = from; to <= text.size(); ++to)
                advance(text.sliced(from, to - from));
        }
    });
    QCOMPARE(calls, measurements);

    QCOMPARE(ruler.advance(text, 2, 4, stretchLength).value_or(-1), advance(text.sliced(2, 2)));
    QCOMPARE(ruler.advance(text, 0, 5, stretchLength).value_or(-1), advance(text.first(5)));
    QVERIFY(!ruler.advance(text, 0, 6, stretchLength));
}

void tst_TextRuler::scaleIsThatOfStretchAndSpacing_data()
{
    QTest::addColumn<QFont>("font");
    QTest::addColumn<double>("scale");

    QTest::newRow("plain") << pixelFont() << 1.0;
    QTest::newRow("narrow") << stretchedFont(50) << 1.0;
    QTest::newRow("wide") << stretchedFont(150) << 1.5;
    QTest::newRow("letters apart") << spacedFont(QFont::PercentageSpacing, 300) << 3.0;
    QTest::newRow("letters close") << spacedFont(QFont::PercentageSpacing, 50) << 1.0;
    QTest::newRow("letters apart by pixels") << spacedFont(QFont::AbsoluteSpacing, 300) << 1.0;
    QTest::newRow("letters backwards") << spacedFont(QFont::PercentageSpacing, -300) << 3.0;
    QTest::newRow("both") << stretchedFont(150, 300) << 4.5;
}

void tst_TextRuler::scaleIsThatOfStretchAndSpacing()
{
    QFETCH(QFont, font);
    QFETCH(double, scale);

    QCOMPARE(horizontalScale(font), scale);
}

void tst_TextRuler::toleranceGrowsWithTheFont_data()
{
    QTest::addColumn<QFont>("font");
    QTest::addColumn<double>("tolerance");

    QFont words = pixelFont();
    words.setWordSpacing(-7);
    QTest::newRow("plain") << pixelFont(20) << 10.0;
    QTest::newRow("large") << pixelFont(100) << 50.0;
    QTest::newRow("wide") << stretchedFont(200) << 20.0;
    QTest::newRow("words close") << words << 17.0;
}

void tst_TextRuler::toleranceGrowsWithTheFont()
{
    QFETCH(QFont, font);
    QFETCH(double, tolerance);

    QCOMPARE(TextRuler::tolerance(font), tolerance);
}

void tst_TextRuler::toleranceIsLessWhereNothingActsOnTheEnds_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QFont>("font");
    QTest::addColumn<bool>("less");

    QFont words = pixelFont();
    words.setWordSpacing(30);
    QTest::newRow("letters") << QStringLiteral("xабвx") << pixelFont() << true;
    QTest::newRow("kerned at the beginning") << QStringLiteral("xVAбx") << pixelFont() << false;
    QTest::newRow("kerned at the end") << QStringLiteral("xабAVx") << pixelFont() << false;
    QTest::newRow("a digit at the beginning") << QStringLiteral("x1бвx") << pixelFont() << false;
    QTest::newRow("a digit at the end") << QStringLiteral("xаб1x") << pixelFont() << true;
    QTest::newRow("letters apart")
        << QStringLiteral("xабвx") << spacedFont(QFont::AbsoluteSpacing, 5) << false;
    QTest::newRow("words apart") << QStringLiteral("xабвx") << words << false;
}

void tst_TextRuler::toleranceIsLessWhereNothingActsOnTheEnds()
{
    QFETCH(QString, text);
    QFETCH(QFont, font);
    QFETCH(bool, less);
    TextRuler ruler(font);
    ruler.advance(text, 1, 4, stretchLength);

    const double share = less ? 0.2 : 1;
    QCOMPARE(ruler.tolerance(text, 1, 4), share * TextRuler::tolerance(font));
    QCOMPARE(ruler.tolerance(text, 1, 1), TextRuler::tolerance(font));
}

QTEST_MAIN(tst_TextRuler)

#include "tst_textruler.moc"
