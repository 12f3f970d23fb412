#include "support/shapercalls.h"
#include "testfonts.h"
#include "text/textmeasure_p.h"
#include "textsupport.h"

#include <QTest>

using namespace ovelin;
using namespace ovelin::tests;
using namespace Qt::StringLiterals;

using Method = TextMeasure::Method;

Q_DECLARE_METATYPE(ovelin::TextMeasure::Method)

namespace {

constexpr double lineWidth = 200;
constexpr int manyLines = 4;

auto fitsInto(double width)
{
    return [width](double advance) { return advance < width; };
}

QFont fontWithWordSpacing(double spacing)
{
    QFont font = pixelFont();
    font.setWordSpacing(spacing);
    return font;
}

QFont capitalizedFont(QFont::Capitalization capitalization)
{
    QFont font = pixelFont();
    font.setCapitalization(capitalization);
    return font;
}

bool canCountShaperCalls()
{
    return countShaperCalls([] { advance(u"w"_s); }) > 0;
}

} // namespace

class tst_TextMeasure : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void takesPartsOfTheSource_data();
    void takesPartsOfTheSource();
    void isInsidePair_data();
    void isInsidePair();

    void decidesAsMeasured_data();
    void decidesAsMeasured();
    void decidesAnEmptyRange();
    void measuresOnlyUpToTheStringTerminator();
    void shapesOnceForManyRanges();
    void shapesParagraphsOnce();
    void measuresOnlyNearTheLimit();
    void decidesALongWordByItsPrefix_data();
    void decidesALongWordByItsPrefix();
    void decidesALongTextThatMovesBack();

    void noticesThatReadingsAreWrong_data();
    void noticesThatReadingsAreWrong();
    void checksAtMostOneLetter_data();
    void checksAtMostOneLetter();

    void elidesAsQtDoes_data();
    void elidesAsQtDoes();
    void elidesALongLineByItsPrefix();
    void elidesNoLineThatFitsWithItsSpace();

    void wholeAdvance_data();
    void wholeAdvance();

private:
    const InstalledFont m_wideEllipsis{halfEmFont(4)};
};

void tst_TextMeasure::initTestCase()
{
    QVERIFY(isTestFontInstalled());
}

void tst_TextMeasure::takesPartsOfTheSource_data()
{
    QTest::addColumn<qsizetype>("from");
    QTest::addColumn<qsizetype>("to");
    QTest::addColumn<QString>("characters");

    QTest::newRow("all") << qsizetype(0) << qsizetype(6) << u"ab cd "_s;
    QTest::newRow("the text") << qsizetype(0) << qsizetype(5) << u"ab cd"_s;
    QTest::newRow("a part") << qsizetype(1) << qsizetype(4) << u"b c"_s;
    QTest::newRow("the space after the text") << qsizetype(5) << qsizetype(6) << u" "_s;
    QTest::newRow("nothing") << qsizetype(2) << qsizetype(2) << u""_s;
}

void tst_TextMeasure::takesPartsOfTheSource()
{
    QFETCH(qsizetype, from);
    QFETCH(qsizetype, to);
    QFETCH(QString, characters);
    const SourceText source(u"ab cd"_s);

    QCOMPARE(source.withoutLastSpace(), u"ab cd"_s);
    QCOMPARE(source.size(), qsizetype(6));
    QCOMPARE(source.range(from, to), characters);
    for (qsizetype i = 0; i < characters.size(); ++i)
        QCOMPARE(source.at(from + i), characters.at(i));
}

void tst_TextMeasure::isInsidePair_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("position");
    QTest::addColumn<bool>("inside");

    QTest::newRow("before") << u"a\U0001F600b"_s << qsizetype(1) << false;
    QTest::newRow("inside") << u"a\U0001F600b"_s << qsizetype(2) << true;
    QTest::newRow("after") << u"a\U0001F600b"_s << qsizetype(3) << false;
    QTest::newRow("the beginning") << u"\U0001F600"_s << qsizetype(0) << false;
    QTest::newRow("the end") << u"\U0001F600"_s << qsizetype(2) << false;
    QTest::newRow("between two pairs") << u"\U0001F600\U0001F600"_s << qsizetype(2) << false;
    QTest::newRow("letters") << u"ab"_s << qsizetype(1) << false;
}

void tst_TextMeasure::isInsidePair()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, position);
    QFETCH(bool, inside);

    QCOMPARE(SourceText(text).isInsidePair(position), inside);
}

void tst_TextMeasure::decidesAsMeasured_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QFont>("font");

    const auto row = [](const char *name, const QString &text, const QFont &font = pixelFont()) {
        QTest::newRow(name) << text << font;
    };
    row("Russian", u"Документальный фильм об экипаже"_s);
    row("kerned pairs", u"AVATAR To. «Ты» — VAVA"_s);
    row("ligatures", u"office affiffi fluffiest"_s);
    row("marks", u"програ\u0301мма не\u0301т"_s);
    row("Hebrew", u"(שלום) עולם 12, abc"_s);
    row("Arabic", u"السلام عليكم لاإله"_s);
    row("Devanagari", u"हिन्दी क्षेत्र"_s);
    row("CJK", u"日本語「テレビ」番組"_s);
    row("emoji", u"a\U0001F468\u200d\U0001F469 \U0001F1F7\U0001F1FA\U0001F1E9"_s);
    row("signs before another script", u"⟶⟶⟶⟶⟶ ⟶क ש"_s);
    row("a mirrored sign before Hebrew", u"⧵⧵⧵⧵⧵⧵ ש"_s);
    row("tabs", u"аб\tв\t\tг"_s);
    row("a direction control", u"ab \u202eshalom\u202c cd"_s);
    row("a string terminator", u"абвг\u009cде жз"_s);
    row("small", u"Документальный фильм"_s, pixelFont(5));
    row("large", u"www i w"_s, pixelFont(200));
    row("letter spacing 25", u"Office AV и"_s, spacedFont(QFont::AbsoluteSpacing, 25));
    row("letter spacing -15", u"wwwwwwwiiiiiiiiwwiiiii"_s, spacedFont(QFont::AbsoluteSpacing, -15));
    row("letter spacing 30 %", u"illi wwww illi"_s, spacedFont(QFont::PercentageSpacing, 30));
    row("word spacing 500", u"и в и на и"_s, fontWithWordSpacing(500));
    row("word spacing -50", u"и в и на и"_s, fontWithWordSpacing(-50));
    row("capital first letters", u"новости дня ﬁ ß"_s, capitalizedFont(QFont::Capitalize));
}

void tst_TextMeasure::decidesAsMeasured()
{
    QFETCH(QString, text);
    QFETCH(QFont, font);
    const SourceText source(text);

    for (const Method method : {Method::ReadRuns, Method::MeasureAll}) {
        for (const double width : {20.0, lineWidth}) {
            TextMeasure measure(source, font, width, manyLines, method);
            for (qsizetype from = 0; from < source.size(); ++from) {
                for (qsizetype to = from; to <= source.size(); ++to) {
                    const QString characters = source.range(from, to);
                    const double measured = advance(characters, font);
                    for (const double change : {-90.0, -9.0, -0.01, 0.0, 0.01, 9.0, 90.0}) {
                        const auto fits = fitsInto(measured + change);
                        QVERIFY2(measure.decide(from, to, fits) == fits(measured),
                                 qPrintable(characters));
                    }
                }
            }
            QVERIFY(!measure.findsWrongReading());
        }
    }
}

void tst_TextMeasure::decidesAnEmptyRange()
{
    const SourceText source(u"wwww"_s);
    TextMeasure measure(source, pixelFont(), lineWidth, manyLines, Method::ReadRuns);

    for (const qsizetype to : {1, 2}) {
        QVERIFY(measure.decide(2, to, fitsInto(0.01)));
        QVERIFY(!measure.decide(2, to, fitsInto(0)));
    }
}

// Qt measures a text only up to its first U+009C.
void tst_TextMeasure::measuresOnlyUpToTheStringTerminator()
{
    const SourceText source(u"a\u009cwwwwwwww"_s);
    QCOMPARE(advance(source.range(0, 10)), advance(u"a"_s));
    TextMeasure measure(source, pixelFont(), lineWidth, manyLines, Method::ReadRuns);

    QVERIFY(measure.decide(0, 10, fitsInto(20)));
}

void tst_TextMeasure::shapesOnceForManyRanges()
{
    if (!canCountShaperCalls())
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");
    // Four lines of 200 pixels hold about 72 letters in a font of 20 pixels.
    const SourceText source(u"абвгдежз"_s.repeated(9));
    TextMeasure measure(source, pixelFont(), lineWidth, manyLines, Method::ReadRuns);

    const int calls = countShaperCalls([&] {
        for (qsizetype from = 0; from < 72; ++from) {
            for (qsizetype to = from; to <= 72; ++to)
                measure.decide(from, to, fitsInto(10'000));
        }
    });
    QCOMPARE(calls, 1);
}

// Each paragraph is a line. To shape the whole text at each paragraph would take 10,000 calls.
void tst_TextMeasure::shapesParagraphsOnce()
{
    if (!canCountShaperCalls())
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");
    constexpr int paragraphs = 100;
    const QString paragraph = u"ж"_s.repeated(99) + u'\u2028';
    const SourceText source(paragraph.repeated(paragraphs));
    constexpr double wideLine = 1'000'000;
    TextMeasure measure(source, pixelFont(), wideLine, manyLines, Method::ReadRuns);

    const int calls = countShaperCalls([&] {
        for (qsizetype from = 0; from < source.size() - 1; from += paragraph.size())
            QVERIFY(measure.decide(from, from + paragraph.size() - 1, fitsInto(wideLine)));
    });
    // A separator takes a call, too.
    QVERIFY(calls <= 3 * paragraphs);
}

void tst_TextMeasure::measuresOnlyNearTheLimit()
{
    if (!canCountShaperCalls())
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");
    const SourceText source(u"абвгдежз"_s.repeated(9));
    TextMeasure measure(source, pixelFont(), lineWidth, manyLines, Method::ReadRuns);
    measure.decide(0, 72, fitsInto(10'000));

    const int callsForPrefixes = countShaperCalls([&] {
        for (qsizetype to = 1; to <= 72; ++to)
            measure.decide(0, to, fitsInto(lineWidth));
    });
    QVERIFY(callsForPrefixes <= 1);
    // The letters are 8 to 18 pixels wide, so few ranges end near the limit.
    const int callsForRanges = countShaperCalls([&] {
        for (qsizetype to = 9; to <= 72; ++to)
            measure.decide(8, to, fitsInto(lineWidth));
    });
    QVERIFY(callsForRanges <= 2);
    const int callsAtTheLimit =
        countShaperCalls([&] { measure.decide(8, 16, fitsInto(advance(u"абвгдежз"_s))); });
    QCOMPARE(callsAtTheLimit, 2);
}

void tst_TextMeasure::decidesALongWordByItsPrefix_data()
{
    QTest::addColumn<QString>("letter");

    QTest::newRow("Russian") << u"ж"_s;
    QTest::newRow("Hebrew") << u"ש"_s;
    QTest::newRow("Arabic") << u"س"_s;
    QTest::newRow("CJK") << u"日"_s;
    QTest::newRow("digits") << u"1"_s;
    QTest::newRow("dashes") << u"—"_s;
}

void tst_TextMeasure::decidesALongWordByItsPrefix()
{
    if (!canCountShaperCalls())
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");
    QFETCH(QString, letter);
    const SourceText source(letter.repeated(20'000));
    // Qt passes a long text to the shaper in pieces of 4,096 characters.
    QVERIFY(countShaperCalls([&] { advance(source.range(0, 20'000)); }) >= 5);
    TextMeasure measure(source, pixelFont(), lineWidth, manyLines, Method::ReadRuns);

    const int calls =
        countShaperCalls([&] { QVERIFY(!measure.decide(0, 20'000, fitsInto(lineWidth))); });
    QCOMPARE(calls, 1);
}

// In this font a letter before a space, and the space, have a negative advance.
void tst_TextMeasure::decidesALongTextThatMovesBack()
{
    const InstalledFont installed(kernedFont({.beforeSpace = -1400}));
    const QFont font = installed.font(20);
    const QString wide = u"q"_s.repeated(40);
    const QString text = wide + u"q "_s.repeated(200);
    QVERIFY(advance(wide, font) > lineWidth);
    QVERIFY(advance(text, font) < lineWidth);
    const SourceText source(text);
    TextMeasure measure(source, font, lineWidth, manyLines, Method::ReadRuns);

    QVERIFY(measure.decide(0, text.size(), fitsInto(lineWidth)));
}

void tst_TextMeasure::noticesThatReadingsAreWrong_data()
{
    QTest::addColumn<Kerning>("kerning");
    QTest::addColumn<QString>("text");
    QTest::addColumn<Method>("method");
    QTest::addColumn<bool>("wrong");

    const auto row = [](const char *name, const Kerning &kerning, const QString &text, bool wrong,
                        Method method = Method::ReadRuns) {
        QTest::newRow(name) << kerning << text << method << wrong;
    };
    // Each glyph of a kerned pair becomes wider by half of the kerning. A letter that is measured without the
    // space lacks this half. The tolerance is half an em: 500 thousandths.
    row("a little farther from spaces", {.beforeSpace = 900}, u"q w"_s, false);
    row("far from spaces", {.beforeSpace = 1100}, u"q w"_s, true);
    row("spaces swallowed", {.beforeSpace = -1400}, u"q w"_s, true);
    row("spaces swallowed, all measured", {.beforeSpace = -1400}, u"q w"_s, false,
        Method::MeasureAll);
    row("one word", {.beforeSpace = 1400}, u"qqqqqqqq"_s, false);
    row("a space at the end", {.beforeSpace = 1400}, u"qqqqqqqq "_s, true);
    row("signs alone before spaces", {.beforeSpace = 1400}, u" q- w"_s, true);
    row("a space at the beginning", {.beforeSpace = 1400}, u" q w"_s, true);
    // The font has no ©. The © of another font is not kerned.
    row("a sign before the last space", {.beforeSpace = 1400}, u"q © w"_s, true);
    row("a long word before the space", {.beforeSpace = 1400}, u"q"_s.repeated(300) + u" w"_s,
        true);
    row("a long word after the space", {.beforeSpace = 1400}, u"q w"_s + u"q"_s.repeated(300),
        true);
}

void tst_TextMeasure::noticesThatReadingsAreWrong()
{
    QFETCH(Kerning, kerning);
    QFETCH(QString, text);
    QFETCH(Method, method);
    QFETCH(bool, wrong);
    const InstalledFont installed(kernedFont(kerning));
    const QFont font = installed.font(20);
    const SourceText source(text);

    // Before the check nothing was measured, or the first letter, the last one, or both.
    const qsizetype last = text.size() - 1;
    for (const QList<qsizetype> &letters : {QList<qsizetype>{}, {0}, {last}, {0, last}}) {
        TextMeasure measure(source, font, lineWidth, manyLines, method);
        for (const qsizetype letter : letters)
            measure.decide(letter, letter + 1, fitsInto(advance(text.sliced(letter, 1), font)));
        QCOMPARE(measure.findsWrongReading(), wrong);
    }
}

void tst_TextMeasure::checksAtMostOneLetter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("comparedSize");
    QTest::addColumn<int>("calls");

    // One call shapes the letter with its space, the other one the letter alone.
    QTest::newRow("nothing is compared yet") << u"новости дня"_s << 0 << 2;
    QTest::newRow("a word is compared already") << u"новости дня"_s << 7 << 0;
    QTest::newRow("a sign is compared already") << u"новости - дня"_s << 9 << 2;
}

void tst_TextMeasure::checksAtMostOneLetter()
{
    if (!canCountShaperCalls())
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");
    QFETCH(QString, text);
    QFETCH(int, comparedSize);
    const SourceText source(text);
    TextMeasure measure(source, pixelFont(), lineWidth, manyLines, Method::ReadRuns);

    // A range whose advance is the limit is measured and compared.
    measure.decide(0, comparedSize, fitsInto(advance(text.first(comparedSize))));
    QTEST(countShaperCalls([&] { measure.findsWrongReading(); }), "calls");
}

void tst_TextMeasure::elidesAsQtDoes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QFont>("font");

    const auto row = [](const char *name, const QString &text, const QFont &font = pixelFont()) {
        QTest::newRow(name) << text << font;
    };
    row("Russian", u"Документальный фильм об экипаже"_s);
    row("kerned with the ellipsis", u"ввввв ввAVвввввAVввввAVвввTвввAVвввAVTTTTVVVVAVAVAVAVAVAV"_s);
    row("ligatures", u"office affiffi fluffiest"_s.repeated(2));
    row("marks", u"програ\u0301мма пе\u0301редач"_s.repeated(2));
    row("Hebrew", u"שלום עולם שלום"_s);
    row("Hebrew and Latin", u"abc שלום def עולם"_s.repeated(3));
    row("Arabic", u"السلام عليكم السلام"_s.repeated(3));
    row("Devanagari", u"हिन्दी क्षेत्र हिन्दी"_s.repeated(2));
    row("CJK", u"日本語「テレビ」番組"_s);
    row("emoji", u"ab\U0001F600\U0001F468\u200d\U0001F469\U0001F600 cd"_s);
    row("regional indicators", u"a\U0001F1F7\U0001F1FA\U0001F1E9\U0001F1EA\U0001F1EB"_s);
    row("signs before the first letter", u"… — «⟶⟶⟶»абв где"_s);
    row("signs without letters", u"12:30–14:00, 15.6.1994"_s);
    row("a tab", u"абвгдежзиклмно\tгде ёжзик"_s);
    row("a direction control", u"ab \u202eshalom\u202c cd ef"_s);
    row("a mark of a direction", u"abc def ghi jkl mno\u200f pqr stu"_s);
    for (const QChar control : {u'\u200e', u'\u200f', u'\u202a', u'\u202e', u'\u2066', u'\u2069'}) {
        QTest::addRow("U+%04X in the part cut away", control.unicode())
            << u"абвгдежзи"_s + control + u"клмн"_s << pixelFont();
    }
    row("a word joiner", u"abc\u2060def ghi jkl"_s);
    row("a string terminator", u"абвг\u009cде жз"_s);
    row("a line separator", u"абвг\u2028де жз"_s);
    row("spaces", u"а     б      в       "_s);
    row("letter spacing 10", u"Документальный AV"_s, spacedFont(QFont::AbsoluteSpacing, 10));
    row("letter spacing -3", u"Документальный AV"_s, spacedFont(QFont::AbsoluteSpacing, -3));
    row("letter spacing -15", u"wwwwwwwiiiiiiiiwwiiiii"_s, spacedFont(QFont::AbsoluteSpacing, -15));
    row("letter spacing 150 %", u"Документальный"_s, spacedFont(QFont::PercentageSpacing, 150));
    row("word spacing 30", u"и в и на и"_s, fontWithWordSpacing(30));
    row("word spacing -30", u"и в и на и"_s, fontWithWordSpacing(-30));
    row("word spacing 30 in Chinese", u"港元 2024年7月14日 星期日"_s, fontWithWordSpacing(30));
    row("capitals", u"новости дня и ночи, погода"_s, capitalizedFont(QFont::AllUppercase));
    row("small capitals", u"Новости дня и ночи, погода"_s, capitalizedFont(QFont::SmallCaps));
    row("capital first letters", u"новости дня и ночи, погода"_s,
        capitalizedFont(QFont::Capitalize));
    row("an ellipsis as wide as four characters", u"q"_s.repeated(40), m_wideEllipsis.font(20));
}

void tst_TextMeasure::elidesAsQtDoes()
{
    QFETCH(QString, text);
    QFETCH(QFont, font);
    const SourceText source(text);
    const QFontMetricsF metrics(font);
    const int widest = int(advance(text, font)) + 30;

    for (const qsizetype from : {0, 3}) {
        const QString line = source.range(from, source.size());
        for (int width = 1; width <= widest; ++width) {
            const QString shown = metrics.elidedText(line, Qt::ElideRight, width);
            const bool isTooWide = !shown.isEmpty() && metrics.horizontalAdvance(shown) > width;
            for (const Method method : {Method::ReadRuns, Method::MeasureAll}) {
                for (const bool isRead : {false, true}) {
                    TextMeasure measure(source, font, width, 1, method);
                    if (isRead)
                        measure.decide(from, source.size(), fitsInto(width));
                    const auto elided = measure.elide(from, source.size());
                    QVERIFY2(elided.size == shown.size() && elided.isTooWide == isTooWide,
                             qPrintable(u"%1 in %2 pixels: %3, not %4 characters"_s.arg(line)
                                            .arg(width)
                                            .arg(elided.size)
                                            .arg(shown.size())));
                }
            }
        }
    }
}

void tst_TextMeasure::elidesALongLineByItsPrefix()
{
    if (!canCountShaperCalls())
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");
    const SourceText source(u"абвгдежз"_s.repeated(2500));
    const QString all = source.range(0, 20'000);
    const int callsOfQt = countShaperCalls(
        [&] { QFontMetricsF(pixelFont()).elidedText(all, Qt::ElideRight, lineWidth); });
    QVERIFY(callsOfQt >= 5);
    TextMeasure measure(source, pixelFont(), lineWidth, manyLines, Method::ReadRuns);

    const int calls = countShaperCalls([&] { measure.elide(0, 20'000); });
    QVERIFY2(calls <= 4, QByteArray::number(calls));
    // The second time the prefix is shaped already.
    QCOMPARE(countShaperCalls([&] { measure.elide(0, 20'000); }), calls - 1);
}

// In this font the space after the last letter makes the line narrower.
void tst_TextMeasure::elidesNoLineThatFitsWithItsSpace()
{
    const InstalledFont installed(kernedFont({.beforeSpace = -1400}));
    const QFont font = installed.font(20);
    const QString word = u"qqqqqqqqqqqq"_s;
    const SourceText source(word);
    const double width = advance(word + u' ', font);
    QVERIFY(width < advance(word, font));
    TextMeasure measure(source, font, width, 1, Method::ReadRuns);

    const auto elided = measure.elide(0, source.size());
    QCOMPARE(elided.size, source.size());
    QVERIFY(!elided.isTooWide);
}

void tst_TextMeasure::wholeAdvance_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QFont>("font");
    QTest::addColumn<QString>("known"); // "all", "wider" than the line, or "nothing"

    const auto row = [](const char *name, const QString &text, const QString &known,
                        const QFont &font = pixelFont()) {
        QTest::newRow(name) << text << font << known;
    };
    row("short", u"Новости"_s, u"all"_s);
    row("several lines", u"и"_s.repeated(60), u"all"_s);
    row("long", u"ж"_s.repeated(100), u"wider"_s);
    row("long, Hebrew", u"ש"_s.repeated(100), u"wider"_s);
    row("long, but narrow", u"i"_s.repeated(80), u"wider"_s);
    row("long, but without advance", u"\u200b"_s.repeated(200), u"nothing"_s);
    row("a tab", u"a\tb"_s, u"all"_s);
    row("an early string terminator", u"ab\u009ccd"_s, u"nothing"_s);
    row("letters that take room away", u"ж"_s.repeated(100), u"nothing"_s,
        spacedFont(QFont::AbsoluteSpacing, -1));
}

void tst_TextMeasure::wholeAdvance()
{
    QFETCH(QString, text);
    QFETCH(QFont, font);
    QFETCH(QString, known);
    const SourceText source(text);
    TextMeasure measure(source, font, lineWidth, manyLines, Method::ReadRuns);
    QCOMPARE(measure.wholeAdvance(), std::nullopt);

    measure.decide(0, 1, fitsInto(lineWidth));

    const double all = advance(text, font);
    const double noted = measure.wholeAdvance().value_or(-1);
    if (known == u"all"_s) {
        QCOMPARE(noted, all);
    } else if (known == u"wider"_s) {
        QVERIFY(noted > lineWidth);
        QVERIFY(noted < all);
    } else {
        QCOMPARE(measure.wholeAdvance(), std::nullopt);
    }
}

QTEST_MAIN(tst_TextMeasure)

#include "tst_textmeasure.moc"
