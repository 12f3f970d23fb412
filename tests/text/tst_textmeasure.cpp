#include "kernedfont.h"
#include "support/reducedrun.h"
#include "support/shapercalls.h"
#include "text/textmeasure_p.h"
#include "textsupport.h"

#include <QFontDatabase>
#include <QScopeGuard>
#include <QTest>

#include <bit>
#include <cmath>
#include <limits>

using namespace ovelin;
using namespace ovelin::tests;

using Method = TextMeasure::Method;

namespace {

constexpr double lineWidth = 200;
constexpr int manyLines = 4;

auto fitsInto(double width)
{
    return [width](double advance) { return advance < width; };
}

const auto fitsOnLine = fitsInto(lineWidth);

} // namespace

Q_DECLARE_METATYPE(ovelin::TextMeasure::Method)

class tst_TextMeasure : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void decidesAsMeasured_data();
    void decidesAsMeasured();
    void tabsFillALine();
    void decidesAnEmptyRangeAsOne();
    void decidesAfterAnInsertion();
    void decidesAfterAnInsertionIntoALongLine();
    void decidesAfterMoreWasAppended();
    void decidesInFrontOfTheFirstLetter_data();
    void decidesInFrontOfTheFirstLetter();

    void mostPerLineIsMoreThanALine();
    void measuresOnlyNearTheLimit();
    void measuresNoFewCharacters();
    void shapesAtOnceWhatTheLinesHold_data();
    void shapesAtOnceWhatTheLinesHold();
    void looksAtTheBeginningOfALongWord_data();
    void looksAtTheBeginningOfALongWord();
    void looksAtAllOfALongWordThatFits();
    void looksAtAllWhereLettersTakeRoomAway();
    void measuresAheadOnALongLine_data();
    void measuresAheadOnALongLine();
    void knowsWhereLongerIsNarrower_data();
    void knowsWhereLongerIsNarrower();
    void knowsWhatIsLeft_data();
    void knowsWhatIsLeft();
    void measuresRarelyWhatIsLeft_data();
    void measuresRarelyWhatIsLeft();
    void forgetsWhatIsLeftAfterAnInsertionElsewhere_data();
    void forgetsWhatIsLeftAfterAnInsertionElsewhere();

    void checksTheRulerOnce();
    void findsTheRulerWrong_data();
    void findsTheRulerWrong();

    void wholeTextIsWiderThanLine_data();
    void wholeTextIsWiderThanLine();
    void neighbourOfWhatIsCheckedDoesNotCount();
    void shrinkageIsThatOfTheScript();
};

void tst_TextMeasure::initTestCase()
{
    QVERIFY(isTestFontInstalled());
}

void tst_TextMeasure::decidesAsMeasured_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QFont>("font");

    const QString russian = QStringLiteral("Документальный фильм об экипаже ледокола");
    QTest::newRow("Russian") << russian << pixelFont();
    QTest::newRow("Russian, small") << russian << pixelFont(5);
    QTest::newRow("kerned") << QStringLiteral("AVATAR To. «Ты» — VAVAVA Tomorrow") << pixelFont();
    QTest::newRow("ligatures") << QStringLiteral("office affiffi fluffiest offices") << pixelFont();
    QTest::newRow("marks") << QStringLiteral("програ\u0301мма пе\u0301редач на неде\u0301лю")
                           << pixelFont();
    QTest::newRow("Arabic") << QStringLiteral("السلام عليكم لاإله السلام") << pixelFont();
    QTest::newRow("large") << QStringLiteral("www i w") << pixelFont(200);
    QFont spaced = pixelFont();
    spaced.setWordSpacing(500);
    QTest::newRow("words far apart") << QStringLiteral("и в и на и") << spaced;
    QTest::newRow("narrow letters")
        << QStringLiteral("illi").repeated(60) << spacedFont(QFont::PercentageSpacing, 30);
    QTest::newRow("close letters")
        << QStringLiteral("w").repeated(90) << spacedFont(QFont::PercentageSpacing, 10);
    const QFont shrinking = spacedFont(QFont::AbsoluteSpacing, -15);
    QTest::newRow("letters that take room away")
        << QStringLiteral("wwwwwwwwwwwwwwwwwwwwiiiiiiiiiiiiii").repeated(4) << shrinking;
}

void tst_TextMeasure::decidesAsMeasured()
{
    QFETCH(QString, text);
    QFETCH(QFont, font);
    for (const Method method : {Method::Ruler, Method::MeasureAll}) {
        TextMeasure measure(font, lineWidth, manyLines, method);
        for (qsizetype from = 0; from < text.size(); from += 3) {
            for (qsizetype to = from; to <= text.size(); ++to) {
                const QString range = text.sliced(from, to - from);
                QVERIFY2(measure.decide(text, from, to, fitsOnLine)
                             == fitsOnLine(advance(range, font)),
                         qPrintable(range));
            }
        }
        QVERIFY(!measure.isRulerWrong());
    }
}

// They are wider than any letter of a small font.
void tst_TextMeasure::tabsFillALine()
{
    const QFont font = pixelFont(1);
    const QString tabs = QStringLiteral("\t\t");
    const double limit = advance(tabs, font);
    TextMeasure measure(font, limit, manyLines, Method::Ruler);

    QVERIFY(!measure.decide(tabs, 0, 2, fitsInto(limit)));
}

void tst_TextMeasure::decidesAnEmptyRangeAsOne()
{
    const QString text = QStringLiteral("wwww");
    TextMeasure measure(pixelFont(), lineWidth, manyLines, Method::Ruler);
    const auto isWide = [](double advance) { return advance < 0; };

    for (const qsizetype to : {1, 2}) {
        QVERIFY(measure.decide(text, 2, to, fitsOnLine));
        QVERIFY(!measure.decide(text, 2, to, isWide));
    }
}

void tst_TextMeasure::decidesAfterAnInsertion()
{
    QString text = QStringLiteral("iiiiiiiiwwwwwwwwwwwwwwwwwwwwwwiiiiiiii");
    TextMeasure measure(pixelFont(), lineWidth, manyLines, Method::Ruler);
    measure.decide(text, 0, text.size(), fitsOnLine);

    text.insert(8, lineSeparator);
    measure.textInserted(9, 1);

    for (qsizetype to = 9; to <= text.size(); ++to) {
        QCOMPARE(measure.decide(text, 9, to, fitsOnLine),
                 fitsOnLine(advance(text.sliced(9, to - 9))));
    }
}

void tst_TextMeasure::decidesAfterAnInsertionIntoALongLine()
{
    QString text = QStringLiteral("ו").repeated(200);
    const double limit = advance(text);
    const auto fits = fitsInto(limit);
    TextMeasure measure(pixelFont(), limit, manyLines, Method::Ruler);
    QVERIFY(measure.decide(text, 0, 90, fits));

    const QString wide = QStringLiteral("ש").repeated(80);
    text.prepend(wide);
    measure.textInserted(wide.size(), wide.size());

    for (qsizetype to = wide.size(); to <= text.size(); ++to)
        QCOMPARE(measure.decide(text, 0, to, fits), fits(advance(text.first(to))));
}

void tst_TextMeasure::decidesAfterMoreWasAppended()
{
    constexpr qsizetype from = 5;
    QString text = QStringLiteral("ו").repeated(100);
    const double limit = 2 * advance(text);
    const auto fits = fitsInto(limit);
    TextMeasure measure(pixelFont(), limit, manyLines, Method::Ruler);
    QVERIFY(measure.decide(text, from, 80, fits));

    text += QStringLiteral("ש").repeated(100);

    for (qsizetype to = 100; to <= text.size(); ++to) {
        QCOMPARE(measure.decide(text, from, to, fits), fits(advance(text.sliced(from, to - from))));
    }
}

// Signs of no script take that of the first letter, or are turned around by it.
void tst_TextMeasure::decidesInFrontOfTheFirstLetter_data()
{
    QTest::addColumn<QChar>("sign");
    QTest::addColumn<QString>("end");

    const QChar arrow = u'\u27f6';
    QTest::newRow("a letter") << arrow << QStringLiteral("क");
    QTest::newRow("a pair that is no letter") << arrow << QStringLiteral("\U0001F600");
    QTest::newRow("half a pair") << arrow << QString(QChar(0xd83d));
    QTest::newRow("a letter that turns signs around") << QChar(u'\u29f5') << QStringLiteral("ש");
}

void tst_TextMeasure::decidesInFrontOfTheFirstLetter()
{
    QFETCH(QChar, sign);
    QFETCH(QString, end);
    const QString text = QString(130, sign) + end;
    constexpr qsizetype perLine = 95;
    const double limit = advance(text.first(perLine));
    const auto fits = fitsInto(limit);

    for (const qsizetype first : {qsizetype(0), perLine - 1}) {
        TextMeasure measure(pixelFont(), limit, manyLines, Method::Ruler);
        for (qsizetype to = first; to <= text.size(); ++to)
            QCOMPARE(measure.decide(text, 0, to, fits), fits(advance(text.first(to))));
    }
}

void tst_TextMeasure::mostPerLineIsMoreThanALine()
{
    const QFont font = pixelFont();
    const double someMore = 64 * font.pixelSize();
    for (const double width : {200.0, 2000.0}) {
        const TextMeasure measure(font, width, manyLines, Method::Ruler);
        const double most = advance(QString(measure.mostPerLine(), u'n'), font);
        QVERIFY(most > 2 * width);
        QVERIFY(most < 3 * width + someMore);
    }

    const TextMeasure endless(font, std::numeric_limits<int>::max(), manyLines, Method::Ruler);
    QVERIFY(endless.mostPerLine() < 100'000);
}

void tst_TextMeasure::measuresOnlyNearTheLimit()
{
    const QString text = QStringLiteral("абвгдежз").repeated(8);
    TextMeasure measure(pixelFont(), lineWidth, manyLines, Method::Ruler);
    measure.decide(text, 0, 20, fitsOnLine);
    if (countShaperCalls([&] { advance(text); }) == 0)
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");

    int measured = 0;
    for (qsizetype to = 0; to <= 40; ++to) {
        const double room = std::abs(lineWidth - advance(text.first(to)));
        const int calls = countShaperCalls([&] { measure.decide(text, 0, to, fitsOnLine); });
        measured += calls;
        // A tenth of the font's size, as nothing acts on these ends.
        if (room > 2)
            QCOMPARE(calls, 0);
    }
    QVERIFY(measured <= 1);
}

void tst_TextMeasure::measuresNoFewCharacters()
{
    const QString text = QStringLiteral("ש").repeated(100);
    constexpr double limit = 1000;
    TextMeasure measure(pixelFont(), limit, manyLines, Method::Ruler);
    if (countShaperCalls([&] { advance(text); }) == 0)
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");

    const auto decide = [&] { QVERIFY(measure.decide(text, 50, 52, fitsInto(limit))); };
    QCOMPARE(countShaperCalls(decide), 0);
}

void tst_TextMeasure::shapesAtOnceWhatTheLinesHold_data()
{
    QTest::addColumn<int>("maxLineCount");
    QTest::addColumn<qsizetype>("stretch");

    // A usual letter takes 0.55 of the font's size.
    constexpr double perLine = lineWidth / (0.55 * 20);
    constexpr qsizetype longest = 256;
    QTest::newRow("one line") << 1 << qsizetype(perLine);
    QTest::newRow("some lines") << 3 << qsizetype(3 * perLine);
    QTest::newRow("many lines") << 15 << longest;
    QTest::newRow("no limit") << 0 << longest;
    QTest::newRow("no limit, negative") << -1 << longest;
}

void tst_TextMeasure::shapesAtOnceWhatTheLinesHold()
{
    QFETCH(int, maxLineCount);
    QFETCH(qsizetype, stretch);
    const QString text = QStringLiteral("абвгд").repeated(80);
    const QFont font = pixelFont(20);
    TextMeasure measure(font, lineWidth, maxLineCount, Method::Ruler);
    if (countShaperCalls([&] { advance(text); }) == 0)
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");

    const auto callsForOne = [&](qsizetype position) {
        return countShaperCalls([&] { measure.decide(text, position, position + 1, fitsOnLine); });
    };
    QVERIFY(callsForOne(0) > 0);
    for (qsizetype position = 0; position < stretch; ++position)
        QCOMPARE(callsForOne(position), 0);
    QVERIFY(callsForOne(stretch) > 0);
}

void tst_TextMeasure::looksAtTheBeginningOfALongWord_data()
{
    QTest::addColumn<QString>("letter");

    QTest::newRow("readable") << QStringLiteral("ж");
    QTest::newRow("not readable") << QStringLiteral("ש");
}

void tst_TextMeasure::looksAtTheBeginningOfALongWord()
{
    QFETCH(QString, letter);
    const QString text = letter.repeated(20'000);
    TextMeasure measure(pixelFont(), lineWidth, manyLines, Method::Ruler);
    const qsizetype most = measure.mostPerLine();
    QVERIFY(advance(text.first(most)) > 2 * lineWidth);
    const int callsForAll = countShaperCalls([&] { advance(text); });
    if (callsForAll == 0)
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");

    // Qt has long texts shaped in pieces.
    const int calls =
        countShaperCalls([&] { QVERIFY(!measure.decide(text, 0, text.size(), fitsOnLine)); });
    QVERIFY(calls <= countShaperCalls([&] { advance(text.first(2 * most)); }));
    QVERIFY(calls < callsForAll);
}

void tst_TextMeasure::looksAtAllOfALongWordThatFits()
{
    const QFont font = spacedFont(QFont::PercentageSpacing, 30);
    bool isLong = false;
    for (qsizetype size = 60; size < 140; ++size) {
        const QString text(size, u'i');
        const double limit = advance(text, font) + 1;
        TextMeasure measure(font, limit, manyLines, Method::Ruler);
        isLong = isLong || size > measure.mostPerLine();
        QVERIFY(measure.decide(text, 0, size, fitsInto(limit)));
    }
    QVERIFY(isLong);
}

void tst_TextMeasure::looksAtAllWhereLettersTakeRoomAway()
{
    const QFont font = spacedFont(QFont::AbsoluteSpacing, -8);
    const QString wide = QStringLiteral("w").repeated(150);
    const QString text = wide + QStringLiteral("i").repeated(600);
    TextMeasure measure(font, lineWidth, manyLines, Method::Ruler);

    QVERIFY(!fitsOnLine(advance(wide, font)));
    QVERIFY(fitsOnLine(advance(text, font)));
    QVERIFY(measure.decide(text, 0, text.size(), fitsOnLine));
}

void tst_TextMeasure::measuresAheadOnALongLine_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<double>("spacing");
    QTest::addColumn<Method>("method");
    QTest::addColumn<int>("pixelSize");

    const QString hebrew = QStringLiteral("שלום ");
    QTest::newRow("not readable") << hebrew << 0.0 << Method::Ruler << 20;
    QTest::newRow("narrow letters") << QStringLiteral("ןי ") << 0.0 << Method::Ruler << 20;
    QTest::newRow("letters that join") << QStringLiteral("السلام ") << 0.0 << Method::Ruler << 20;
    QTest::newRow("ideographs") << QStringLiteral("日本語 ") << 0.0 << Method::Ruler << 20;
    QTest::newRow("all measured") << QStringLiteral("слово ") << 0.0 << Method::MeasureAll << 20;
    QTest::newRow("close letters") << hebrew << -3.0 << Method::Ruler << 20;
    QTest::newRow("large letters") << hebrew << 0.0 << Method::Ruler << 200;
    QTest::newRow("letters that take room away") << hebrew << -30.0 << Method::Ruler << 20;
}

void tst_TextMeasure::measuresAheadOnALongLine()
{
    QFETCH(QString, word);
    QFETCH(double, spacing);
    QFETCH(Method, method);
    QFETCH(int, pixelSize);
    QFont font = spacedFont(QFont::AbsoluteSpacing, spacing);
    font.setPixelSize(pixelSize);
    constexpr qsizetype words = 4000;
    const QString text = word.repeated(words);
    const double limit = std::max(lineWidth, 0.9 * advance(text, font));
    TextMeasure measure(font, limit, manyLines, method);
    const auto fits = fitsInto(limit);
    const int callsForAll = countShaperCalls([&] { advance(text, font); });
    if (callsForAll == 0)
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");

    // Of so many words the advances are asked for after the decision; all of them would take long.
    constexpr qsizetype step = 50;
    int calls = 0;
    for (qsizetype to = word.size(); to <= text.size(); to += word.size()) {
        bool decided = false;
        calls += countShaperCalls([&] { decided = measure.decide(text, 0, to, fits); });
        if (to / word.size() % step == 0)
            QCOMPARE(decided, fits(advance(text.first(to), font)));
        if (!decided)
            break;
    }

    const int mostMeasurements = 3 * std::bit_width(std::size_t(words));
    QVERIFY(calls <= mostMeasurements * callsForAll);
}

void tst_TextMeasure::knowsWhereLongerIsNarrower_data()
{
    QTest::addColumn<QString>("beginning");
    QTest::addColumn<QString>("end");
    QTest::addColumn<QFont>("font");

    const QString hebrew = QStringLiteral("ש").repeated(80);
    const QFont close = spacedFont(QFont::AbsoluteSpacing, -8);
    QTest::newRow("close letters") << hebrew << QStringLiteral("ו").repeated(60) << close;
    QFont closeWords = pixelFont();
    closeWords.setWordSpacing(-30);
    QTest::newRow("close words") << hebrew << QStringLiteral("ו ").repeated(30) << closeWords;
    QTest::newRow("letters that join")
        << QStringLiteral("ب").repeated(80) << QStringLiteral("ﻷلا").repeated(20) << pixelFont();
}

void tst_TextMeasure::knowsWhereLongerIsNarrower()
{
    QFETCH(QString, beginning);
    QFETCH(QString, end);
    QFETCH(QFont, font);
    const QString line = beginning + end;
    constexpr qsizetype from = 40;
    const QString text = QString(from, u'w') + line;

    bool isNarrower = false;
    for (qsizetype last = beginning.size(); last < line.size(); ++last) {
        const double limit = advance(line.first(last), font);
        const auto fits = fitsInto(limit);
        TextMeasure measure(font, limit, manyLines, Method::Ruler);
        for (qsizetype to = beginning.size() - 5; to <= line.size(); ++to) {
            const double width = advance(line.first(to), font);
            QCOMPARE(measure.decide(text, from, from + to, fits), fits(width));
            isNarrower = isNarrower || (to > last && width < limit);
        }
    }
    QVERIFY(isNarrower);
}

void tst_TextMeasure::knowsWhatIsLeft_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("spacing");

    const QString hebrew = QStringLiteral("שלום");
    QTest::newRow("letters") << hebrew.repeated(500) << -1.0;
    QTest::newRow("letters that take room away")
        << hebrew.repeated(250) + QStringLiteral("ו").repeated(1000) << -8.0;
    QTest::newRow("letters that join") << QStringLiteral("السلام").repeated(300) << -3.0;
    QTest::newRow("ideographs") << QStringLiteral("日テ").repeated(1000) << -3.0;
    QTest::newRow("pairs that are no letters")
        << QStringLiteral("\U0001F600").repeated(1000) << -3.0;
    QTest::newRow("pairs of regions")
        << QStringLiteral("\U0001F1F7\U0001F1FA").repeated(300) << -3.0;
    QTest::newRow("letters far apart") << QStringLiteral("ـ\u200e\u200d").repeated(300) << 100.0;
    // Each reaches up to a stop from 0 on, and up to 0 from a little before it.
    QTest::newRow("tabs") << QStringLiteral("\tו").repeated(100)
                          << -advance(QStringLiteral("ו")) - 0.625;
    QTest::newRow("behind what Qt measures") << u'\u009c' + hebrew.repeated(100) << -20.0;
    const QString turning = QStringLiteral("\u29f5").repeated(1000);
    QTest::newRow("behind an isolate") << u'\u2066' + turning + u'\u2069' + hebrew << -1.0;
    QTest::newRow("behind an embedding") << u'\u202a' + turning + hebrew << -1.0;
    QTest::newRow("behind an override")
        << u'\u202e' + QStringLiteral("LTa").repeated(300) + hebrew << -6.0;

    // Signs of no script take that of the letter in front of them, or of the first one.
    const QString letter = QStringLiteral("क");
    const QString signs = QStringLiteral("\u3002").repeated(1000);
    QTest::newRow("signs before a letter") << signs + letter << -3.0;
    QTest::newRow("signs behind a letter") << letter + signs << -3.0;
    QTest::newRow("signs behind a mark of another script")
        << letter + u'\u05b7' + QString(300, u'.') << -3.0;
    QTest::newRow("signs among letters") << (letter + signs.first(30)).repeated(50) << -3.0;
    QTest::newRow("signs that the first letter turns around")
        << QStringLiteral("aש") + turning << -1.0;
}

void tst_TextMeasure::knowsWhatIsLeft()
{
    QFETCH(QString, text);
    QFETCH(double, spacing);
    const QFont font = spacedFont(QFont::AbsoluteSpacing, spacing);
    const qsizetype end = text.size();

    for (qsizetype gone = 1; gone < end; gone += 1 + gone / (isRunReduced() ? 1 : 4)) {
        const double left = advance(text.sliced(gone), font);
        for (const double limit : {left - 1, left + 1}) {
            TextMeasure measure(font, lineWidth, manyLines, Method::Ruler);
            const auto fits = fitsInto(limit);
            for (const qsizetype from : {qsizetype(0), gone - 1, gone, qsizetype(0)})
                QCOMPARE(measure.decide(text, from, end, fits),
                         fits(advance(text.sliced(from), font)));
        }
    }
}

void tst_TextMeasure::measuresRarelyWhatIsLeft_data()
{
    QTest::addColumn<QString>("text");

    const QString signs = QStringLiteral("\u3002").repeated(40'000);
    QTest::newRow("letters") << QStringLiteral("ש").repeated(40'000);
    QTest::newRow("signs") << signs;
    QTest::newRow("signs before a letter") << signs + QStringLiteral("ש");
}

void tst_TextMeasure::measuresRarelyWhatIsLeft()
{
    QFETCH(QString, text);
    const QFont font = spacedFont(QFont::AbsoluteSpacing, -3);
    constexpr qsizetype perLine = 100;
    const auto fits = fitsInto(advance(text.first(perLine - 10), font));
    const int callsForAll = countShaperCalls([&] { advance(text, font); });
    if (callsForAll == 0)
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");
    TextMeasure measure(font, lineWidth, manyLines, Method::Ruler);

    int calls = 0;
    for (qsizetype from = 0; from + 20 * perLine < text.size(); from += perLine) {
        calls += countShaperCalls([&] { QVERIFY(!measure.decide(text, from, text.size(), fits)); });
        QVERIFY(!measure.decide(text, from, from + perLine, fits));
        text.insert(from + perLine - 1, lineSeparator);
        measure.textInserted(from + perLine, 1);
    }
    QVERIFY(calls <= 60 * callsForAll);
}

void tst_TextMeasure::forgetsWhatIsLeftAfterAnInsertionElsewhere_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("size");

    QTest::newRow("in front of it") << 49 << 300;
    QTest::newRow("across its beginning") << 40 << 100;
    QTest::newRow("at its end") << 500 << 300;
    QTest::newRow("behind it") << 501 << 300;
}

void tst_TextMeasure::forgetsWhatIsLeftAfterAnInsertionElsewhere()
{
    QFETCH(int, position);
    QFETCH(int, size);
    const QFont font = spacedFont(QFont::AbsoluteSpacing, -10);
    const QString narrow = QStringLiteral("ו").repeated(size);
    constexpr qsizetype from = 50;
    constexpr qsizetype to = 500;
    const qsizetype moved = to + narrow.size();
    const QString text = QStringLiteral("ש").repeated(to) + narrow;
    const QString changed = QString(text).insert(position, narrow);
    const auto fits = fitsInto(advance(changed.sliced(from, moved - from), font) + 1);
    TextMeasure measure(font, lineWidth, manyLines, Method::Ruler);

    QVERIFY(!measure.decide(text, from, to, fits));
    measure.textInserted(position + narrow.size(), narrow.size());
    QCOMPARE(measure.decide(changed, from, to, fits),
             fits(advance(changed.sliced(from, to - from), font)));
    QVERIFY(measure.decide(changed, from, moved, fits));
}

void tst_TextMeasure::checksTheRulerOnce()
{
    const QString text = QStringLiteral("Новости дня и ночи");
    TextMeasure measure(pixelFont(), lineWidth, manyLines, Method::Ruler);
    if (countShaperCalls([&] { advance(text); }) == 0)
        QSKIP("This Qt contains the shaper, whose calls cannot be counted.");

    const auto calls = [&](qsizetype from, qsizetype to) {
        return countShaperCalls([&] { measure.checkOnce(text, from, to); });
    };
    QCOMPARE(calls(7, 7), 0);
    QVERIFY(calls(0, 7) > 0);
    QCOMPARE(calls(0, 11), 0);
    QVERIFY(!measure.isRulerWrong());
}

void tst_TextMeasure::findsTheRulerWrong_data()
{
    QTest::addColumn<int>("kerning");
    QTest::addColumn<Method>("method");
    QTest::addColumn<bool>("wrong");

    // Half of the kerning is that of the letter, and up to half of the font's size is tolerated.
    QTest::newRow("a little") << 900 << Method::Ruler << false;
    QTest::newRow("much") << 1100 << Method::Ruler << true;
    QTest::newRow("much, backwards") << -1100 << Method::Ruler << true;
    QTest::newRow("much, all measured") << 1100 << Method::MeasureAll << false;
}

void tst_TextMeasure::findsTheRulerWrong()
{
    QFETCH(int, kerning);
    QFETCH(Method, method);
    QFETCH(bool, wrong);
    const QString family = QStringLiteral("Measured %1").arg(kerning);
    const int id =
        QFontDatabase::addApplicationFontFromData(kernedFont(family, {.beforeSpace = kerning}));
    const auto removeFont = qScopeGuard([id] { QFontDatabase::removeApplicationFont(id); });
    QFont font(family);
    font.setPixelSize(20);

    // In a narrow box the stretch would end with the range.
    const QString text = QStringLiteral("q w");
    TextMeasure measure(font, 10, 2, method);
    measure.checkOnce(text, 0, 1);
    QCOMPARE(measure.isRulerWrong(), wrong);

    // Next to what is read only measuring decides.
    for (const qsizetype size : {1, 64}) {
        const QString word(size, u'q');
        const double limit = advance(word, font) + std::copysign(3, kerning);
        TextMeasure deciding(font, limit, 2, method);
        deciding.decide(word + u' ', 0, size, fitsInto(limit));
        QCOMPARE(deciding.isRulerWrong(), wrong);
    }
}

void tst_TextMeasure::wholeTextIsWiderThanLine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("spacing");
    QTest::addColumn<bool>("wider");

    QTest::newRow("nothing read") << QString() << 0.0 << false;
    QTest::newRow("short") << QStringLiteral("Новости") << 0.0 << false;
    QTest::newRow("a little longer") << QStringLiteral("и").repeated(16) << 0.0 << false;
    QTest::newRow("longer") << QStringLiteral("и").repeated(17) << 0.0 << true;
    QTest::newRow("longer, not readable") << QStringLiteral("ש").repeated(40) << 0.0 << true;
    QTest::newRow("longer, but others may take room away")
        << QStringLiteral("и").repeated(40) << -1.0 << false;
}

void tst_TextMeasure::wholeTextIsWiderThanLine()
{
    QFETCH(QString, text);
    QFETCH(double, spacing);
    QFETCH(bool, wider);
    const QFont font = spacedFont(QFont::AbsoluteSpacing, spacing);
    TextMeasure measure(font, lineWidth, manyLines, Method::Ruler);

    measure.decide(text, 0, text.size(), fitsOnLine);

    // What has been read may be off by half of the font's size, and so may what stands beside it.
    const double least = lineWidth + (TextRuler::canRead(QStringView(text)) ? 20 : 10);
    QCOMPARE(advance(text, font) > least && spacing >= 0, wider);
    QCOMPARE(measure.isWiderThanLine(text, text.size()), wider);
}

// The space behind the last word is none of the text's.
void tst_TextMeasure::neighbourOfWhatIsCheckedDoesNotCount()
{
    const QString text = QStringLiteral("w ");
    QFont font = pixelFont(16);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 40);
    const double width = advance(text.first(1), font) + 1;
    QVERIFY(advance(text, font) > width + 2 * TextRuler::tolerance(font));
    TextMeasure measure(font, width, manyLines, Method::Ruler);

    measure.checkOnce(text, 0, 1);

    QVERIFY(!measure.isWiderThanLine(text, text.size()));
}

void tst_TextMeasure::shrinkageIsThatOfTheScript()
{
    const TextMeasure measure(pixelFont(), lineWidth, manyLines, Method::Ruler);

    QCOMPARE(measure.mostShrinkage(QStringLiteral("Новости")), 10.0);
    // Four emoji may become one.
    const QString emoji = QStringLiteral("\U0001F468\u200d\U0001F469");
    QCOMPARE(measure.mostShrinkage(emoji), 80.0);

    QFont wide = pixelFont();
    wide.setStretch(QFont::UltraExpanded);
    const TextMeasure wideMeasure(wide, lineWidth, manyLines, Method::Ruler);
    QCOMPARE(wideMeasure.mostShrinkage(emoji), 160.0);
}

QTEST_MAIN(tst_TextMeasure)

#include "tst_textmeasure.moc"
