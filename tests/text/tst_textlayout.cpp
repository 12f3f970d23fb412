#include "textsupport.h"

#include <ovelin/textrenderer.h>

#include <QFontMetricsF>
#include <QRegularExpression>
#include <QStaticText>
#include <QTest>

#include <limits>

#ifdef Q_OS_LINUX
#  include <sys/resource.h>

#  include <QFile>
#endif

using namespace ovelin;
using namespace ovelin::tests;

namespace {

constexpr int lowestInt = std::numeric_limits<int>::min();
constexpr int highestInt = std::numeric_limits<int>::max();

struct Setup
{
    QString text;
    int width;
    int maxLineCount = 1;
    bool hyphenationEnabled = true;
    QFont font = pixelFont();
    Qt::TextFormat format = Qt::AutoText;
};

struct Shown
{
    QString text;
    bool elided;
    QSize size;
};

Shown layOut(const Setup &setup)
{
    TextRenderer renderer;
    renderer.setTextFont(setup.font);
    renderer.setTextFormat(setup.format);
    renderer.setMaxLineCount(setup.maxLineCount);
    renderer.setHyphenationEnabled(setup.hyphenationEnabled);
    renderer.setTextWidth(setup.width);
    renderer.setText(setup.text);
    renderer.relayout();
    return {renderer.displayText(), renderer.isTextElided(), renderer.boundingSize()};
}

const QString ellipsisText(1, QChar(ellipsis));

} // namespace

class tst_TextLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void widthIsTheSmallerOfBoxAndText();
    void measuresALineWithoutMargin();

    void elidedTextIsAsWideAsTheBox();
    void richTextIsAsWideAsTheBox();
    void cutsOneCharacterMoreIfTheEllipsisOverhangs();
    void textIsEmptyIfTheEllipsisAloneOverhangs();
    void removesSpaceAndPunctuationBeforeTheEllipsis_data();
    void removesSpaceAndPunctuationBeforeTheEllipsis();
    void keepsOtherCharactersBeforeTheEllipsis_data();
    void keepsOtherCharactersBeforeTheEllipsis();

    void insertsNoSeparatorAtASpace();

    void onlyALayoutThatBreaksLinesResetsElided();
    void widthOfZeroKeepsTheLayout();
    void measuresWithTheFontOfTheText();

    void showsTheWholeTextWithoutLineLimit_data();
    void showsTheWholeTextWithoutLineLimit();
    void movesAHyphenOnceWithoutLineLimit_data();
    void movesAHyphenOnceWithoutLineLimit();
    void returnsAtAnyLineLimit_data();
    void returnsAtAnyLineLimit();
    void movesAHyphenToABoundedNumberOfLines_data();
    void movesAHyphenToABoundedNumberOfLines();
    void splitsNoSurrogatePair_data();
    void splitsNoSurrogatePair();
    void splitsInFrontOfASurrogatePair();
    void cutsNoSurrogatePairIfTheEllipsisOverhangs();
    void usesNoHyphenationPointAfterTheWord();
    void breaksATextWithHalfASurrogatePair();
    void laysOutLongTexts_data();
    void laysOutLongTexts();
    void reservesNoMoreThanTheTextNeeds();
};

void tst_TextLayout::initTestCase()
{
    QVERIFY(isTestFontInstalled());
}

void tst_TextLayout::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void tst_TextLayout::widthIsTheSmallerOfBoxAndText()
{
    const QString text = QStringLiteral("aaaa bbbb");
    const int textWidth = fineWidth(text);
    QCOMPARE(layOut({text, textWidth + 1}).size.width(), textWidth);
    QCOMPARE(layOut({text, textWidth}).size.width(), textWidth);
    QCOMPARE(layOut({text, textWidth - 1}).size.width(), textWidth - 1);

    // A text of two lines has the width of the box, too, if all of it on one line would be wider than the box.
    QCOMPARE(layOut({text, textWidth - 20, 2}).size.width(), textWidth - 20);

    // Without a box, the width of the text includes the line separator.
    QCOMPARE(layOut({QStringLiteral("aaaa\nbbbb"), 0, 2}).size.width(),
             fineWidth(QStringLiteral("aaaa\u2028bbbb")));
}

void tst_TextLayout::measuresALineWithoutMargin()
{
    const QString text = QStringLiteral("aaab");
    const int width = leastWidthThatFits(advance(text));
    QVERIFY(width < fineWidth(text));
    QCOMPARE(layOut({text, width}).elided, false);
    QCOMPARE(layOut({text, width - 1}).elided, true);
}

void tst_TextLayout::elidedTextIsAsWideAsTheBox()
{
    for (const int width : {30, 60, 99})
        QCOMPARE(layOut({QStringLiteral("aaaa bbbb"), width}).size.width(), width);

    // The line limit cuts this text although the line has room for more.
    const Shown paragraphs = layOut({QStringLiteral("a\nb\nc"), 400, 2});
    QCOMPARE(paragraphs.elided, true);
    QCOMPARE(paragraphs.size.width(), 400);
}

void tst_TextLayout::richTextIsAsWideAsTheBox()
{
    const QString text = QStringLiteral("<b>a</b>");
    const Shown shown = layOut({text, 500, 1, true, pixelFont(), Qt::RichText});
    QCOMPARE(shown.size.width(), 500);
}

void tst_TextLayout::cutsOneCharacterMoreIfTheEllipsisOverhangs()
{
    // elidedText() does not count the letter spacing after the ellipsis.
    QFont font = spacedFont(QFont::AbsoluteSpacing, 10);
    const QFontMetricsF metrics(font);
    const QString line = QStringLiteral("aaaaaaaa ");

    int overhanging = 0;
    int fitting = 0;
    for (int width = 50; width < 120; ++width) {
        const QString elided = metrics.elidedText(line, Qt::ElideRight, width);
        QVERIFY(elided.size() >= 2 && elided.endsWith(ellipsis));
        const bool overhangs = metrics.horizontalAdvance(elided) > width;
        overhanging += overhangs;
        fitting += !overhangs;
        const QString kept = elided.chopped(overhangs ? 2 : 1);
        QCOMPARE(layOut({line.chopped(1), width, 1, true, font}).text, kept + ellipsisText);
    }
    QVERIFY(overhanging > 0);
    QVERIFY(fitting > 0);
}

void tst_TextLayout::textIsEmptyIfTheEllipsisAloneOverhangs()
{
    QFont font = spacedFont(QFont::AbsoluteSpacing, 10);
    const QFontMetricsF metrics(font);
    const int width = static_cast<int>(std::ceil(advance(ellipsisText)));
    QCOMPARE(metrics.elidedText(QStringLiteral("aaaa "), Qt::ElideRight, width), ellipsisText);
    QVERIFY(metrics.horizontalAdvance(ellipsisText) > width);
    QVERIFY(metrics.horizontalAdvance(QStringLiteral("i")) < width);

    // The ellipsis overhangs, so the layout removes one more character than Qt. On the first line there is none
    // left, so nothing is shown. On the second line this character is the line separator.
    const Shown first = layOut({QStringLiteral("aaaa"), width, 1, true, font});
    QCOMPARE(first.text, QString());
    QCOMPARE(first.elided, true);
    const Shown later = layOut({QStringLiteral("i\naaaa"), width, 2, true, font});
    QCOMPARE(later.text, QStringLiteral("i") + ellipsisText);
    QCOMPARE(later.elided, true);
}

void tst_TextLayout::removesSpaceAndPunctuationBeforeTheEllipsis_data()
{
    QTest::addColumn<QString>("removed");

    QTest::newRow("comma") << QStringLiteral(",");
    QTest::newRow("comma and space") << QStringLiteral(", ");
    QTest::newRow("space") << QStringLiteral(" ");
    QTest::newRow("spaces") << QStringLiteral("   ");
    QTest::newRow("no-break space") << QStringLiteral("\u00a0");
    QTest::newRow("ideographic space") << QStringLiteral("\u3000");
    QTest::newRow("vertical tab") << QStringLiteral("\v");
    QTest::newRow("form feed") << QStringLiteral("\f");
    QTest::newRow("carriage return") << QStringLiteral("\r");
    QTest::newRow("newline") << QStringLiteral("\n");
    QTest::newRow("next line") << QStringLiteral("\u0085");
    QTest::newRow("full stop") << QStringLiteral(".");
    QTest::newRow("quotes") << QStringLiteral(" «");
    QTest::newRow("brackets") << QStringLiteral(" ([{");
    QTest::newRow("dash") << QStringLiteral(" — ");
    QTest::newRow("underscore") << QStringLiteral("_");
    QTest::newRow("ellipses") << QStringLiteral("……");
    QTest::newRow("mixed") << QStringLiteral("!? *\u00a0#\u3000%&@/\\ ");
}

void tst_TextLayout::removesSpaceAndPunctuationBeforeTheEllipsis()
{
    QFETCH(QString, removed);

    // At one of these widths Qt cuts the line directly after the characters that the layout must then remove. The
    // rest of the text is one word, so that the layout breaks the line nowhere before.
    const QString kept = QStringLiteral("a,a");
    const QString text = kept + removed + QStringLiteral("bbbbbbbbbb");
    const QFontMetricsF metrics(pixelFont());
    for (int width = 20; width < advance(text); ++width) {
        const QString elided = metrics.elidedText(text + u' ', Qt::ElideRight, width);
        if (elided != kept + removed + ellipsisText || metrics.horizontalAdvance(elided) > width)
            continue;
        const Shown shown = layOut({text, width, 1, true, pixelFont(), Qt::PlainText});
        QCOMPARE(shown.text, kept + ellipsisText);
        QCOMPARE(shown.elided, true);
        return;
    }
    QFAIL("No width cuts there.");
}

void tst_TextLayout::keepsOtherCharactersBeforeTheEllipsis_data()
{
    QTest::addColumn<QString>("kept");

    QTest::newRow("letter") << QStringLiteral("b");
    QTest::newRow("digit") << QStringLiteral(" 7");
    QTest::newRow("plus") << QStringLiteral(" +");
    QTest::newRow("dollar") << QStringLiteral(" $");
    QTest::newRow("degree") << QStringLiteral(",°");
    QTest::newRow("zero width space") << QStringLiteral("\u200b");
    QTest::newRow("escape") << QStringLiteral("\x1b");
    QTest::newRow("backspace") << QStringLiteral("\b");
    QTest::newRow("shift out") << QStringLiteral("\x0e");
}

void tst_TextLayout::keepsOtherCharactersBeforeTheEllipsis()
{
    QFETCH(QString, kept);

    const QString before = QStringLiteral("aa") + kept;
    const QString text = before + QStringLiteral(", bbbbbbbbbb");
    const QFontMetricsF metrics(pixelFont());
    for (int width = 20; width < advance(text); ++width) {
        const QString elided = metrics.elidedText(text + u' ', Qt::ElideRight, width);
        if (elided != before + QStringLiteral(", ") + ellipsisText
            || metrics.horizontalAdvance(elided) > width)
            continue;
        const Shown shown = layOut({text, width, 1, true, pixelFont(), Qt::PlainText});
        QCOMPARE(shown.text, before + ellipsisText);
        return;
    }
    QFAIL("No width cuts there.");
}

void tst_TextLayout::insertsNoSeparatorAtASpace()
{
    const QString text = QStringLiteral("aaaa bbbb");
    const int width = greatestWidthThatOverflows(advance(text));
    const Shown shown = layOut({text, width, 2});
    QCOMPARE(shown.text, text);
    QCOMPARE(shown.elided, false);
}

void tst_TextLayout::onlyALayoutThatBreaksLinesResetsElided()
{
    TextRenderer renderer;
    renderer.setTextFont(pixelFont());
    renderer.setText(QStringLiteral("aaaa bbbb"));
    renderer.setTextWidth(60);
    renderer.relayout();
    QCOMPARE(renderer.isTextElided(), true);

    renderer.setTextWidth(0);
    renderer.relayout();
    QCOMPARE(renderer.displayText(), QStringLiteral("aaaa bbbb"));
    QCOMPARE(renderer.isTextElided(), true);

    renderer.setTextFormat(Qt::RichText);
    renderer.setTextWidth(400);
    renderer.relayout();
    QCOMPARE(renderer.isTextElided(), true);

    renderer.setTextFormat(Qt::AutoText);
    renderer.relayout();
    QCOMPARE(renderer.isTextElided(), false);

    renderer.setTextWidth(60);
    renderer.relayout();
    QCOMPARE(renderer.isTextElided(), true);
    renderer.setTextWidth(0);
    renderer.relayout();
    renderer.setMaxTextWidth(400);
    renderer.relayout();
    QCOMPARE(renderer.isTextElided(), false);
}

void tst_TextLayout::widthOfZeroKeepsTheLayout()
{
    TextRenderer renderer;
    renderer.setTextFont(pixelFont());
    renderer.setMaxLineCount(3);
    renderer.setText(QStringLiteral("aaaa-bbbb"));
    renderer.setTextWidth(greatestWidthThatOverflows(advance(QStringLiteral("aaaa-bbbb"))));
    renderer.relayout();
    renderer.setTextWidth(0);
    renderer.relayout();
    QCOMPARE(renderer.boundingSize().width(), renderer.boundingRect().width());
    QCOMPARE(renderer.displayText(), QStringLiteral("aaaa\n-bbbb"));

    renderer.setMaxLineCount(4);
    renderer.relayout();
    QCOMPARE(renderer.displayText(), QStringLiteral("aaaa-bbbb"));
}

void tst_TextLayout::measuresWithTheFontOfTheText()
{
    const QString text = QStringLiteral("aaaa bbbb");
    const int width = leastWidthThatFits(advance(text));
    QCOMPARE(layOut({text, width, 1, true, pixelFont(20)}).elided, false);
    QCOMPARE(layOut({text, width, 1, true, pixelFont(30)}).elided, true);

    // The size is that of a text prepared with this font.
    const Shown shown = layOut({text, 1000, 1, true, pixelFont(40)});
    QStaticText expected(text);
    expected.setTextWidth(fineWidth(text, pixelFont(40)));
    expected.prepare(QTransform(), pixelFont(40));
    QCOMPARE(shown.size, expected.size().toSize());
    QVERIFY(shown.size.height() > 40);
}

void tst_TextLayout::showsTheWholeTextWithoutLineLimit_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("wide word") << QStringLiteral("wwwwwwww");
    QTest::newRow("wide words") << QStringLiteral("wwwwwwww iiii wwwwwwww");
    QTest::newRow("wide Russian word") << QStringLiteral("да программирование на");
    QTest::newRow("two spaces") << QStringLiteral("www  www");
    QTest::newRow("many spaces") << QStringLiteral("www        www");
    QTest::newRow("only spaces") << QStringLiteral("          ");
    QTest::newRow("space before a separator") << QStringLiteral("www \u2028www");
    QTest::newRow("separators") << QStringLiteral("www\u2028\u2028\u2028www");
    QTest::newRow("wide paragraphs") << QStringLiteral("wwwwww\u2028wwwwww\u2028");
    QTest::newRow("newlines") << QStringLiteral("wwwwww\nwwwwww\n");
    QTest::newRow("range of numbers") << QStringLiteral("1000-2000-3000");
}

// A word that fits on no line would wrap for ever. So the layout leaves it on a line that it overflows.
void tst_TextLayout::showsTheWholeTextWithoutLineLimit()
{
    QFETCH(QString, text);

    for (const int maxLineCount : {0, -1, lowestInt, lowestInt + 1}) {
        for (const int width : {1, 8, 20, 35, 45, 60, 100}) {
            for (const bool hyphenation : {false, true}) {
                const Shown shown = layOut({text, width, maxLineCount, hyphenation});
                QCOMPARE(shown.text, QString(text).replace(lineSeparator, u'\n'));
                QCOMPARE(shown.elided, false);

                // Qt alone wraps the text, at its spaces.
                QStaticText expected(text);
                expected.setTextWidth(std::min(width, fineWidth(text)));
                expected.prepare(QTransform(), pixelFont());
                QCOMPARE(shown.size, QSize(static_cast<int>(std::ceil(expected.size().width())),
                                           static_cast<int>(std::ceil(expected.size().height()))));
            }
        }
    }
}

void tst_TextLayout::movesAHyphenOnceWithoutLineLimit_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");

    QTest::newRow("wide word") << QStringLiteral("x-wwww") << QStringLiteral("x\n-wwww");
    QTest::newRow("wide words") << QStringLiteral("x-wwww-wwww wwww-i")
                                << QStringLiteral("x\n-wwww\n-wwww wwww\n-i");
    QTest::newRow("at the beginning") << QStringLiteral("-wwww") << QStringLiteral("\n-wwww");
    QTest::newRow("wide paragraph")
        << QStringLiteral("x-wwww\u2028i x") << QStringLiteral("x\n-wwww\ni x");
    QTest::newRow("spaces after it")
        << QStringLiteral("x-wwww  i") << QStringLiteral("x\n-wwww  i");
}

void tst_TextLayout::movesAHyphenOnceWithoutLineLimit()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    constexpr int width = 45;
    QVERIFY(advance(QStringLiteral("wwww")) >= width);

    for (const int maxLineCount : {0, -1, lowestInt}) {
        for (const bool hyphenation : {true, false}) {
            const Shown laidOut = layOut({text, width, maxLineCount, hyphenation});
            QCOMPARE(laidOut.text, shown);
            QCOMPARE(laidOut.elided, false);
        }
    }
}

void tst_TextLayout::returnsAtAnyLineLimit_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("wide word") << QStringLiteral("iii wwww");
    QTest::newRow("lone space") << QStringLiteral("www  www");
    QTest::newRow("lone separator") << QStringLiteral("www \u2028www");
    QTest::newRow("lone hyphen") << QStringLiteral("www--www");
    QTest::newRow("hyphen") << QStringLiteral("x-www");
    QTest::newRow("wide paragraph") << QStringLiteral("www wwww\u2028www");
}

// Counting up to the highest limits line by line would take hours.
void tst_TextLayout::returnsAtAnyLineLimit()
{
    QFETCH(QString, text);

    for (const int lines : {2, 5, 1000, highestInt - 1, highestInt}) {
        for (const int width : {1, 8, 20, 35, 45, 60}) {
            for (const bool hyphenation : {false, true}) {
                const Shown shown = layOut({text, width, lines, hyphenation});
                QVERIFY(shown.text.size() < 4 * 1024);
                QVERIFY(shown.elided || QString(shown.text).remove(u'\n').size() >= 4);
            }
        }
    }
}

void tst_TextLayout::movesAHyphenToABoundedNumberOfLines_data()
{
    QTest::addColumn<int>("textLength");
    QTest::addColumn<int>("maxLineCount");
    QTest::addColumn<int>("separators");

    // The wrap that reaches the limit inserts no separator.
    QTest::newRow("two lines") << 5 << 2 << 1;
    QTest::newRow("three lines") << 5 << 3 << 2;
    QTest::newRow("100 lines") << 5 << 100 << 99;
    QTest::newRow("1024 lines") << 5 << 1024 << 1023;
    QTest::newRow("1025 lines") << 5 << 1025 << 1024;
    QTest::newRow("1026 lines") << 5 << 1026 << 1024;
    QTest::newRow("as many as an int holds") << 5 << highestInt << 1024;
    QTest::newRow("one less than an int holds") << 5 << highestInt - 1 << 1024;
    QTest::newRow("1024 characters") << 1024 << highestInt << 1024;
    QTest::newRow("1025 characters") << 1025 << highestInt << 1025;
    QTest::newRow("longer text") << 1200 << highestInt << 1200;
    QTest::newRow("longer text, fewer lines") << 1200 << 1100 << 1099;
    QTest::newRow("longer text, as many lines") << 1200 << 1201 << 1200;
}

void tst_TextLayout::movesAHyphenToABoundedNumberOfLines()
{
    QFETCH(int, textLength);
    QFETCH(int, maxLineCount);
    QFETCH(int, separators);

    const int width = 45;
    const QString tail = QStringLiteral(" i").repeated(textLength / 2);
    const QString text = (QStringLiteral("x-www") + tail).left(textLength);
    QCOMPARE(text.size(), textLength);
    QVERIFY(advance(QStringLiteral("www")) >= width);

    for (const bool hyphenation : {true, false}) {
        const Shown shown = layOut({text, width, maxLineCount, hyphenation});
        QCOMPARE(shown.text,
                 QStringLiteral("x") + QString(separators, u'\n') + QStringLiteral("-w…"));
        QCOMPARE(shown.elided, true);
    }
}

void tst_TextLayout::splitsNoSurrogatePair_data()
{
    QTest::addColumn<QFont>("font");

    QTest::newRow("room for several on a line") << pixelFont();
    QTest::newRow("room for half of one") << pixelFont(60);
}

void tst_TextLayout::splitsNoSurrogatePair()
{
    QFETCH(QFont, font);
    const QString face = QStringLiteral("\U0001F600");
    QVERIFY(advance(face.first(1), font) < advance(face, font));
    const QString text =
        QStringLiteral("Хит %1 сегодня вечером на нашем канале и завтра").arg(face.repeated(10));
    TextRenderer renderer;
    renderer.setTextFont(font);
    renderer.setText(text);
    for (const int maxLineCount : {2, 3}) {
        renderer.setMaxLineCount(maxLineCount);
        for (int width = 20; width < 200; ++width) {
            renderer.setTextWidth(width);
            renderer.relayout();
            QVERIFY(renderer.displayText().isValidUtf16());
            QVERIFY(!renderer.displayText().contains(QStringLiteral("\n\n")));
            QVERIFY(renderer.isTextElided());
        }
    }
}

void tst_TextLayout::splitsInFrontOfASurrogatePair()
{
    const QString face = QStringLiteral("\U0001F600");
    const QString end = QStringLiteral("wwwwwwwww");
    const QFont font = pixelFont(60);
    for (const QString &beginning : {QString(), QStringLiteral("www")}) {
        const int width = fineWidth(beginning + face.first(1), font) + 1;
        QVERIFY(fineWidth(beginning + face, font) >= width);
        const Shown shown = layOut({beginning + face + end, width, 3, true, font});
        QVERIFY(shown.text.isValidUtf16());
        QCOMPARE(shown.text.section(u'\n', 0, 0), beginning.isEmpty() ? shown.text : beginning);
    }
}

void tst_TextLayout::cutsNoSurrogatePairIfTheEllipsisOverhangs()
{
    constexpr int width = 51;
    const QFont font = spacedFont(QFont::AbsoluteSpacing, 10);
    const QString face = QStringLiteral("\U0001F600");
    // elidedText() does not count the letter spacing after the ellipsis.
    const QString elided = QFontMetricsF(font).elidedText(face.repeated(8), Qt::ElideRight, width);
    QCOMPARE(elided, face + ellipsisText);
    QVERIFY(advance(elided, font) > width);

    QCOMPARE(layOut({face.repeated(8), width, 1, true, font}).text, ellipsisText);
}

// In lower case each U+0130 is two characters, so a hyphenation point can lie after the end of the word.
void tst_TextLayout::usesNoHyphenationPointAfterTheWord()
{
    const QFont font = spacedFont(QFont::AbsoluteSpacing, -10);
    const Shown shown =
        layOut({QStringLiteral("ШШШШШШ\u0130\u0130\u0130\u0130-iiiiii"), 46, 4, true, font});

    QCOMPARE(shown.text, QStringLiteral("ШШ…"));
}

void tst_TextLayout::breaksATextWithHalfASurrogatePair()
{
    const QString text = QStringLiteral("www ") + QChar(0xd83d) + QStringLiteral(" www www www");
    TextRenderer renderer;
    renderer.setTextFont(pixelFont());
    renderer.setMaxLineCount(2);
    renderer.setTextWidth(leastWidthThatFits(advance(QStringLiteral("www \uFFFD"))));
    renderer.setText(text);
    renderer.relayout();
    QCOMPARE(renderer.text(), text);
    QVERIFY(renderer.isTextElided());
    QCOMPARE(renderer.displayText(), QStringLiteral("www \uFFFD www…"));

    // A copy shows the same.
    TextRenderer copy(renderer);
    copy.setTextWidth(renderer.textWidth());
    copy.relayout();
    QVERIFY(copy.isTextElided());
    QCOMPARE(copy.displayText(), renderer.displayText());
}

void tst_TextLayout::laysOutLongTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("width");

    const int length = isRunReduced() ? 1000 : 20'000;
    const int shorter = length / 5; // for narrow boxes, in which a text has many lines
    const auto repeated = [](const QString &part, int count) {
        return part.repeated(count / part.size() + 1).left(count);
    };
    const auto add = [&](const char *name, const QString &part) {
        QTest::addRow("%s", name) << repeated(part, length) << 600;
        QTest::addRow("%s in a narrow box", name) << repeated(part, shorter) << 45;
        QTest::addRow("%s in a box of one letter", name) << repeated(part, shorter) << 20;
        QTest::addRow("%s in a wide box", name) << repeated(part, length) << 2 * length;
    };
    add("one Latin word", QStringLiteral("b"));
    add("one Russian word", QStringLiteral("программа"));
    add("vowels", QStringLiteral("а"));
    add("one word of joining letters", QStringLiteral("ب"));
    add("words", QStringLiteral("программа передач на сегодня "));
    add("wide words", QStringLiteral("wwwwww "));
    add("spaces", QStringLiteral(" "));
    add("hyphens", QStringLiteral("-"));
    add("separators", QStringLiteral("\u2028"));
    add("hyphens with wide words", QStringLiteral("x-www"));
    add("hyphens with digits", QStringLiteral("1-2"));
    add("everything", QStringLiteral("да  x-www--\u2028 \u2028программа 1-2 - "));

    QTest::newRow("hyphens before wide words") << repeated(QStringLiteral("x-www"), length) << 45;
    QTest::newRow("hyphen before a wide word at the end")
        << repeated(QStringLiteral("i "), length - 5) + QStringLiteral("x-www") << 45;
}

void tst_TextLayout::laysOutLongTexts()
{
    QFETCH(QString, text);
    QFETCH(int, width);

    for (const int maxLineCount : {-1, 1, 40, highestInt}) {
        const Shown shown = layOut({text, width, maxLineCount});
        QVERIFY(shown.text.size() <= 4 * text.size() + 4 * 1024);
        if (maxLineCount == 1)
            QVERIFY(shown.elided);
    }
}

void tst_TextLayout::reservesNoMoreThanTheTextNeeds()
{
#ifdef Q_OS_LINUX
    QFile status(QStringLiteral("/proc/self/statm"));
    if (!status.open(QIODevice::ReadOnly))
        QSKIP("The size of the process is not known.");
    const qint64 pages = status.readAll().split(' ').constFirst().toLongLong();
    constexpr qint64 pageSize = 4096;
    constexpr qint64 spare = 512LL * 1024 * 1024;

    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_AS, &before), 0);
    rlimit limited = before;
    limited.rlim_cur = static_cast<rlim_t>(pages * pageSize + spare);
    QCOMPARE(setrlimit(RLIMIT_AS, &limited), 0);
    rlimit applied{};
    QCOMPARE(getrlimit(RLIMIT_AS, &applied), 0);
    // Under an emulator the call may succeed without an effect.
    if (applied.rlim_cur != limited.rlim_cur)
        QSKIP("The address space cannot be limited here.");

    bool allocated = true;
    Shown shown{};
    try {
        for (const int maxLineCount :
             {highestInt, highestInt - 1, highestInt / 2, lowestInt, lowestInt + 1})
            shown = layOut({QStringLiteral("aaaa bbbb"), 400, maxLineCount});
    } catch (const std::bad_alloc &) {
        allocated = false;
    }
    QCOMPARE(setrlimit(RLIMIT_AS, &before), 0);
    QVERIFY(allocated);
    QCOMPARE(shown.text, QStringLiteral("aaaa bbbb"));
#else
    QSKIP("The address space cannot be limited here.");
#endif
}

QTEST_MAIN(tst_TextLayout)

#include "tst_textlayout.moc"
