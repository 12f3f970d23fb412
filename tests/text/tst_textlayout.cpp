#include "textsupport.h"

#include <ovelin/textrenderer.h>

#include <QElapsedTimer>
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

constexpr int least = std::numeric_limits<int>::min();
constexpr int most = std::numeric_limits<int>::max();

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

// What an elided line keeps: as much as Qt's own elision leaves, with the ellipsis at the end.
QString cut(const QString &line, double width, const QFont &font = pixelFont())
{
    const QFontMetricsF metrics(font);
    const QString elided = metrics.elidedText(line, Qt::ElideRight, width);
    const bool overhangs = metrics.horizontalAdvance(elided) > width;
    return line.left(elided.size() - (overhangs ? 2 : 1)) + QChar(ellipsis);
}

// The characters of a word that stay on a line of this width when it is split by force.
int charactersThatFit(const QString &line, int wordOffset, double width)
{
    int count = 0;
    while (fineWidth(line.left(wordOffset + count + 1)) < width)
        ++count;
    return count;
}

double hyphenatedWidth(const QString &prefix)
{
    return fineWidth(prefix) + advance(QStringLiteral("-"));
}

int lineCountOf(const Shown &shown)
{
    const double lineHeight = layOut({QStringLiteral("a"), 100}).size.height();
    return qRound(shown.size.height() / lineHeight);
}

const QString newline = QStringLiteral("\n");
const QString ellipsisText = QString(QChar(ellipsis));

} // namespace

class tst_TextLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void textWithoutLimitIsShownAsItIs();
    void textThatFitsIsShownAsItIs();
    void widthOfTheStaticTextIsTheSmaller();
    void lineAsWideAsTheLimitOverflows();
    void measuresTheLineWithoutItsSeparator();
    void measuresTheRawAdvance();

    void oneLineIsElided();
    void limitReachedOnALaterLine();
    void elidedTextKeepsTheLimit();
    void cutsOneMoreWhereTheEllipsisOverhangs();
    void isEmptyWhereNotEvenTheEllipsisFits();
    void ellipsisAloneOverhangs();
    void removesSpaceAndPunctuationBeforeTheEllipsis_data();
    void removesSpaceAndPunctuationBeforeTheEllipsis();
    void keepsOtherCharactersBeforeTheEllipsis_data();
    void keepsOtherCharactersBeforeTheEllipsis();
    void removesEverythingBeforeTheEllipsis();
    void cutAtTheEndAppendsTheEllipsis();
    void cutBehindTheEndChangesNothing();

    void paragraphsReachTheLimit();
    void paragraphsBelowTheLimit();
    void separatorReachesTheLimitOfOne();
    void newlineOnOneLineIsNoBreak();
    void wrappedLastWordOfAParagraphCountsTwice();
    void elisionAfterAWrapInTheSameRound();

    void wrapsAtSpacesWithoutSeparator();
    void wrapsBeforeAHyphen();
    void wrapBeforeAHyphenCountsOneLine();
    void wrapsBeforeAHyphenAtTheStart();
    void doesNotBreakBeforeADigit();
    void breaksAfterAHyphenBeforeAnythingElse();
    void hyphenAtTheEndOfTheTextIsAWordEnd();
    void wordThatFitsBehindItsHyphenStays();

    void hyphenatesWhatFits();
    void hyphenatesInTheMiddleOfALine();
    void hyphenatesLineAfterLine();
    void wrapsWhereNoSyllableFits();
    void doesNotHyphenateTheLastLine();
    void disabledHyphenationWrapsTheWord();
    void disabledHyphenationStillDividesALoneWord();

    void splitsALoneWordByForce();
    void forcedSplitMeasuresTheFineWidth();
    void forcedSplitMeasuresTheWholeLine();
    void forcedSplitLeavesFiveCharacters();
    void forcedSplitCountsTheSeparatorOfTheWord();
    void longWordIsSplitToFillTheLine();
    void shortWordIsWrapped();
    void wordThatFitsExactlyIsWrapped();
    void wordTooWideForALineIsSplitWhateverItsLength();
    void wordTooShortToSplitIsElided();
    void forcedSplitCountsALine();

    void loneSeparatorSendsTheLineBack_data();
    void loneSeparatorSendsTheLineBack();
    void loneSeparatorBeginsTheLineWithTheWordBefore();
    void loneLineSeparatorSendsTheLineBack();
    void lineMayBeginBehindItsFirstBreak();

    void richTextIsLeftToQt();
    void otherFormatsAreBroken_data();
    void otherFormatsAreBroken();
    void elisionIsForgottenByAPlainLayoutOnly();
    void layoutIsDoneOnlyWhenNeeded();
    void layoutUsesTheFontOfTheText();

    void endsWithoutLineLimit_data();
    void endsWithoutLineLimit();
    void separatesHyphensWithoutLineLimit();
    void separatesAHyphenOnceWithoutLineLimit_data();
    void separatesAHyphenOnceWithoutLineLimit();
    void endlessRoundsOfTwoLinesReachTheLimit();
    void endsAtAnyLineLimit_data();
    void endsAtAnyLineLimit();
    void boundsTheSeparatorsBeforeAHyphen_data();
    void boundsTheSeparatorsBeforeAHyphen();
    void splitsNoSurrogatePair_data();
    void splitsNoSurrogatePair();
    void splitsInFrontOfASurrogatePair();
    void breaksATextWithABrokenCharacter();
    void replacesBrokenCharactersOnly_data();
    void replacesBrokenCharactersOnly();
    void longTextsEnd_data();
    void longTextsEnd();
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

void tst_TextLayout::textWithoutLimitIsShownAsItIs()
{
    const QString text = QStringLiteral("программа, программа-гид\nи ещё 1-2  слова");
    for (const int maxLineCount : {least, -1, 0, 1, 2, 3, most}) {
        const Shown shown = layOut({text, 0, maxLineCount});
        QCOMPARE(shown.text, text);
        QCOMPARE(shown.elided, false);
        QString measured = text;
        if (maxLineCount >= 2)
            measured.replace(u'\n', lineSeparator);
        QCOMPARE(shown.size.width(), fineWidth(measured));
    }
}

void tst_TextLayout::textThatFitsIsShownAsItIs()
{
    const QString text = QStringLiteral("программа, программа-гид и ещё 1-2  слова");
    for (const int maxLineCount : {least, -1, 0, 1, 2, 3, most}) {
        const Shown shown = layOut({text, fineWidth(text), maxLineCount});
        QCOMPARE(shown.text, text);
        QCOMPARE(shown.elided, false);
        QCOMPARE(lineCountOf(shown), 1);
    }
}

void tst_TextLayout::widthOfTheStaticTextIsTheSmaller()
{
    const QString text = QStringLiteral("aaaa bbbb");
    QCOMPARE(layOut({text, fineWidth(text) + 100}).size.width(), fineWidth(text));
    QCOMPARE(layOut({text, fineWidth(text) + 1}).size.width(), fineWidth(text));
    QCOMPARE(layOut({text, fineWidth(text)}).size.width(), fineWidth(text));
    QCOMPARE(layOut({text, fineWidth(text) - 1}).size.width(), fineWidth(text) - 1);

    // The whole text counts, not its longest line.
    const int width = fineWidth(QStringLiteral("aaaa")) + 10;
    QCOMPARE(layOut({text, width, 2}).size.width(), width);
}

void tst_TextLayout::lineAsWideAsTheLimitOverflows()
{
    QString text(u'a');
    while (advance(text) != std::floor(advance(text)))
        text += u'a';
    const int width = static_cast<int>(advance(text));

    const Shown asWide = layOut({text, width});
    QCOMPARE(asWide.elided, true);
    QCOMPARE(asWide.text, cut(text + u' ', width));

    const Shown narrower = layOut({text, width + 1});
    QCOMPARE(narrower.elided, false);
    QCOMPARE(narrower.text, text);
}

void tst_TextLayout::measuresTheLineWithoutItsSeparator()
{
    const QString text = QStringLiteral("aaaa");
    const int width = leastWidthThatFits(advance(text));
    QVERIFY(advance(text + u' ') > width);
    QCOMPARE(layOut({text, width}).elided, false);

    const QString twoWords = QStringLiteral("aaaa-bbbb");
    QVERIFY(advance(QStringLiteral("aaaa-")) > width);
    QVERIFY(advance(QStringLiteral("-bbbb")) < width + 10);
    const Shown shown = layOut({twoWords, width + 10, 2});
    QCOMPARE(shown.text, QStringLiteral("aaaa\n-bbbb"));
    QCOMPARE(shown.elided, false);
}

void tst_TextLayout::measuresTheRawAdvance()
{
    // Two pixels less than the fine width would be enough to overflow, were it used here.
    const QString text = QStringLiteral("aaab");
    const int width = leastWidthThatFits(advance(text));
    QVERIFY(width < fineWidth(text));
    QCOMPARE(layOut({text, width}).elided, false);
    QCOMPARE(layOut({text, width - 1}).elided, true);
}

void tst_TextLayout::oneLineIsElided()
{
    const QString first = QStringLiteral("программа");
    const QString text = first + QStringLiteral(" передач");
    for (const int width : {leastWidthThatFits(advance(first)), 70, 100}) {
        QVERIFY(width < advance(text));
        const Shown shown = layOut({text, width});
        QCOMPARE(shown.elided, true);
        // The round in which the line overflows decides which line is cut.
        const QString line = advance(first) < width ? text + u' ' : first + u' ';
        QCOMPARE(shown.text, cut(line, width));
        QVERIFY(!shown.text.contains(u'\n'));
        QVERIFY(!shown.text.contains(u'-'));
        QVERIFY(shown.text.endsWith(ellipsis));
    }
}

void tst_TextLayout::limitReachedOnALaterLine()
{
    const QString words = QStringLiteral("aaaa bbbb cccc dddd");
    // Each line holds one word, not two.
    const int width = leastWidthThatFits(advance(QStringLiteral("bbbb"))) + 2;
    QVERIFY(width > advance(QStringLiteral("aaaa")));
    QVERIFY(width < advance(QStringLiteral("aaaa b")));

    for (int lines = 1; lines <= 3; ++lines) {
        const Shown shown = layOut({words, width, lines});
        const QString before = words.left(5 * (lines - 1));
        QCOMPARE(shown.text, before + cut(words.mid(5 * (lines - 1), 10), width));
        QCOMPARE(shown.elided, true);
        QCOMPARE(lineCountOf(shown), lines);
    }
    for (const int lines : {4, 5, most}) {
        const Shown shown = layOut({words, width, lines});
        QCOMPARE(shown.text, words);
        QCOMPARE(shown.elided, false);
        QCOMPARE(lineCountOf(shown), 4);
    }
}

void tst_TextLayout::elidedTextKeepsTheLimit()
{
    const QString text = QStringLiteral("aaaa bbbb");
    for (const int width : {30, 60, 99})
        QCOMPARE(layOut({text, width}).size.width(), width);

    // A hard break cuts where the box has room; the width stays that of the box all the same.
    const Shown paragraphs = layOut({QStringLiteral("a\nb\nc"), 400, 2});
    QCOMPARE(paragraphs.elided, true);
    QCOMPARE(paragraphs.size.width(), 400);
}

void tst_TextLayout::cutsOneMoreWhereTheEllipsisOverhangs()
{
    // Qt leaves the spacing behind the ellipsis out when it looks for the place to cut.
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

void tst_TextLayout::isEmptyWhereNotEvenTheEllipsisFits()
{
    const int width = static_cast<int>(std::ceil(advance(ellipsisText))) - 1;
    QVERIFY(QFontMetricsF(pixelFont())
                .elidedText(QStringLiteral("aaaa "), Qt::ElideRight, width)
                .isEmpty());
    for (const int narrow : {1, 2, width}) {
        const Shown shown = layOut({QStringLiteral("aaaa"), narrow});
        QCOMPARE(shown.text, QString());
        QCOMPARE(shown.elided, true);
    }

    // The lines before go as well.
    QVERIFY(advance(QStringLiteral("i")) < width);
    const Shown later = layOut({QStringLiteral("i\naaaa"), width, 2});
    QCOMPARE(later.text, QString());
    QCOMPARE(later.elided, true);
}

void tst_TextLayout::ellipsisAloneOverhangs()
{
    QFont font = spacedFont(QFont::AbsoluteSpacing, 10);
    const QFontMetricsF metrics(font);
    const int width = static_cast<int>(std::ceil(advance(ellipsisText)));
    QCOMPARE(metrics.elidedText(QStringLiteral("aaaa "), Qt::ElideRight, width), ellipsisText);
    QVERIFY(metrics.horizontalAdvance(ellipsisText) > width);
    QVERIFY(metrics.horizontalAdvance(QStringLiteral("i")) < width);

    // On the first line nothing is left to cut, on a later one the separator before it is.
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

    // The cut falls right behind what is to be removed, the text before it ends on a letter and the
    // text behind it is one word, so that its end is the first place where the line overflows.
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

void tst_TextLayout::removesEverythingBeforeTheEllipsis()
{
    const QString text = QStringLiteral(",, ,,bbbbbbbbbb");
    const int width = static_cast<int>(std::ceil(advance(QStringLiteral(",, ,,") + ellipsisText)));
    QVERIFY(cut(text, width).startsWith(QStringLiteral(",,")));
    QVERIFY(!cut(text, width).contains(u'b'));
    QCOMPARE(layOut({text, width}).text, ellipsisText);
}

// A paragraph's last word that wraps counts its line and the paragraph's, which may reach the
// limit: the line formed before the wrap is cut then, at a place counted from the start of the new
// line.
void tst_TextLayout::elisionAfterAWrapInTheSameRound()
{
    const QString text = QStringLiteral("aa bb\ncc");
    const int width = greatestWidthThatOverflows(advance(QStringLiteral("aa bb")));
    const QString line = QStringLiteral("aa bb\u2028");
    const QString elided = QFontMetricsF(pixelFont()).elidedText(line, Qt::ElideRight, width);
    QVERIFY(elided.size() >= 2);
    QVERIFY(advance(elided) <= width);
    const int place = 3 + int(elided.size()) - 1;
    QVERIFY(place == 5 || place == 6); // the separator behind the second word, or next to it

    const Shown shown = layOut({text, width, 2});
    QCOMPARE(shown.text, QStringLiteral("aa bb") + ellipsisText);
    QCOMPARE(shown.elided, true);
}

void tst_TextLayout::cutAtTheEndAppendsTheEllipsis()
{
    // The ellipsis is narrower than the last letter, so that the cut line has only lost that one.
    const QString text = QStringLiteral("aa ЩЩ\n");
    const int width = greatestWidthThatOverflows(advance(QStringLiteral("aa ЩЩ")));
    const QString line = QStringLiteral("aa ЩЩ\u2028");
    const QString elided = QFontMetricsF(pixelFont()).elidedText(line, Qt::ElideRight, width);
    QCOMPARE(elided, QStringLiteral("aa Щ") + ellipsisText);
    QVERIFY(advance(elided) <= width);
    QCOMPARE(3 + elided.size() - 1, text.size() + 1);

    const Shown shown = layOut({text, width, 2});
    QCOMPARE(shown.text, QStringLiteral("aa ЩЩ") + ellipsisText);
    QCOMPARE(shown.elided, true);
}

void tst_TextLayout::cutBehindTheEndChangesNothing()
{
    const QString text = QStringLiteral("aaaa ЩЩ\n");
    const int width = greatestWidthThatOverflows(advance(QStringLiteral("aaaa ЩЩ")));
    const QString line = QStringLiteral("aaaa ЩЩ\u2028");
    const QString elided = QFontMetricsF(pixelFont()).elidedText(line, Qt::ElideRight, width);
    QCOMPARE(elided, QStringLiteral("aaaa Щ") + ellipsisText);
    QVERIFY(5 + elided.size() - 1 > text.size() + 1);

    // What stands at the end, here the space added for the search, is taken for the ellipsis.
    const Shown shown = layOut({text, width, 2});
    QCOMPARE(shown.text, QStringLiteral("aaaa ЩЩ "));
    QCOMPARE(shown.elided, true);
}

void tst_TextLayout::paragraphsReachTheLimit()
{
    const Shown shown = layOut({QStringLiteral("a\nb\nc"), 400, 2});
    QCOMPARE(shown.text, QStringLiteral("a\nb") + ellipsisText);
    QCOMPARE(shown.elided, true);

    // A newline at the very end reaches it as well.
    const Shown atTheEnd = layOut({QStringLiteral("a\nb\n"), 400, 2});
    QCOMPARE(atTheEnd.text, QStringLiteral("a\nb") + ellipsisText);
    QCOMPARE(atTheEnd.elided, true);

    const Shown emptyParagraphs = layOut({QStringLiteral("a\n\n\nb"), 400, 3});
    QCOMPARE(emptyParagraphs.text, QStringLiteral("a") + ellipsisText);
    QCOMPARE(emptyParagraphs.elided, true);
}

void tst_TextLayout::paragraphsBelowTheLimit()
{
    const Shown shown = layOut({QStringLiteral("a\nb\nc"), 400, 3});
    QCOMPARE(shown.text, QStringLiteral("a\nb\nc"));
    QCOMPARE(shown.elided, false);
    QCOMPARE(lineCountOf(shown), 3);

    // Without a line limit nothing is counted.
    for (const int maxLineCount : {0, -1, least}) {
        const Shown unlimited = layOut({QStringLiteral("a\u2028b\u2028c"), 400, maxLineCount});
        QCOMPARE(unlimited.text, QStringLiteral("a\nb\nc"));
        QCOMPARE(unlimited.elided, false);
    }
}

void tst_TextLayout::separatorReachesTheLimitOfOne()
{
    const Shown shown = layOut({QStringLiteral("aa\u2028bb"), 400, 1});
    QCOMPARE(shown.text, QStringLiteral("aa") + ellipsisText);
    QCOMPARE(shown.elided, true);
}

void tst_TextLayout::newlineOnOneLineIsNoBreak()
{
    for (const int maxLineCount : {1, 0, -1}) {
        const Shown shown = layOut({QStringLiteral("aa\nbb"), 400, maxLineCount});
        QCOMPARE(shown.text, QStringLiteral("aa\nbb"));
        QCOMPARE(shown.elided, false);
    }
}

void tst_TextLayout::wrappedLastWordOfAParagraphCountsTwice()
{
    const QString text = QStringLiteral("aa bb\ncc");
    const int width = greatestWidthThatOverflows(advance(QStringLiteral("aa bb")));
    QVERIFY(width > advance(QStringLiteral("bb")));

    // Three lines are shown, four are counted.
    const Shown three = layOut({text, width, 3});
    QCOMPARE(three.text, QStringLiteral("aa bb") + ellipsisText);
    QCOMPARE(three.elided, true);

    const Shown four = layOut({text, width, 4});
    QCOMPARE(four.text, text);
    QCOMPARE(four.elided, false);
    QCOMPARE(lineCountOf(four), 3);

    // A line with a word in the middle of a paragraph counts once.
    const Shown middle = layOut({QStringLiteral("aa bb cc"), width, 3});
    QCOMPARE(middle.elided, false);

    // The new line begins one character late, behind the first of the word that wrapped: a word
    // that overflows by no more than that fits now.
    const QString wide = QStringLiteral("i www\nb");
    const int wideWidth = greatestWidthThatOverflows(advance(QStringLiteral("www")));
    QVERIFY(advance(QStringLiteral("ww")) < wideWidth);
    QVERIFY(advance(QStringLiteral("www")) >= wideWidth);
    const Shown late = layOut({wide, wideWidth, 4});
    QCOMPARE(late.text, wide);
    QCOMPARE(late.elided, false);
}

void tst_TextLayout::wrapsAtSpacesWithoutSeparator()
{
    const QString text = QStringLiteral("aaaa bbbb");
    const int width = greatestWidthThatOverflows(advance(text));
    const Shown shown = layOut({text, width, 2});
    QCOMPARE(shown.text, text);
    QCOMPARE(shown.elided, false);
    QCOMPARE(lineCountOf(shown), 2);
}

void tst_TextLayout::wrapsBeforeAHyphen()
{
    const QString text = QStringLiteral("aaaa-bbbb cc");
    const int width = greatestWidthThatOverflows(advance(QStringLiteral("aaaa-bbbb")));
    QVERIFY(advance(QStringLiteral("-bbbb cc")) < width);
    const Shown shown = layOut({text, width, 2});
    QCOMPARE(shown.text, QStringLiteral("aaaa\n-bbbb cc"));
    QCOMPARE(shown.elided, false);
    QCOMPARE(lineCountOf(shown), 2);

    // The hyphen is measured with the new line.
    const QString hyphenCounts = QStringLiteral("aaaa-bbbb-cccc");
    const double withHyphen = advance(QStringLiteral("-bbbb-cccc"));
    const int tight = greatestWidthThatOverflows(withHyphen);
    QVERIFY(tight > advance(QStringLiteral("bbbb-cccc")));
    QVERIFY(tight > advance(QStringLiteral("aaaa-bbbb")));
    QCOMPARE(layOut({hyphenCounts, tight, 3}).text, QStringLiteral("aaaa-bbbb\n-cccc"));
    const int tighter = greatestWidthThatOverflows(advance(QStringLiteral("aaaa-bbbb")));
    QCOMPARE(layOut({hyphenCounts, tighter, 3}).text, QStringLiteral("aaaa\n-bbbb\n-cccc"));

    // One line more is counted for it.
    QCOMPARE(layOut({hyphenCounts, tighter, 2}).text,
             QStringLiteral("aaaa\n") + cut(QStringLiteral("-bbbb-cccc "), tighter));
}

void tst_TextLayout::wrapBeforeAHyphenCountsOneLine()
{
    // Unlike another last word of a paragraph, one behind a hyphen does not count the paragraph's
    // end before it stands on its new line.
    const QString text = QStringLiteral("aaaa-bbbb\ncc");
    const int width = greatestWidthThatOverflows(advance(QStringLiteral("aaaa-bbbb")));
    QVERIFY(advance(QStringLiteral("-bbbb")) < width);

    const Shown three = layOut({text, width, 3});
    QCOMPARE(three.text, QStringLiteral("aaaa\n-bbbb\ncc"));
    QCOMPARE(three.elided, false);

    const Shown two = layOut({text, width, 2});
    QCOMPARE(two.text, QStringLiteral("aaaa\n-bbbb") + ellipsisText);
    QCOMPARE(two.elided, true);
}

void tst_TextLayout::wrapsBeforeAHyphenAtTheStart()
{
    const QString text = QStringLiteral("-www");
    const int width = greatestWidthThatOverflows(advance(text));
    QCOMPARE(layOut({text, width, 2}).text, newline + cut(text + u' ', width));
}

void tst_TextLayout::doesNotBreakBeforeADigit()
{
    // As one word it goes to the new line as a whole; there its own hyphen would be a place to
    // divide it, but the word fits.
    const QString text = QStringLiteral("bbb 10-20");
    const int width = greatestWidthThatOverflows(advance(text));
    QVERIFY(advance(QStringLiteral("10-20")) < width);
    const QString prefix = QStringLiteral("bbb 10");
    QVERIFY(advance(prefix) < width);

    const Shown disabled = layOut({text, width, 2, false});
    QCOMPARE(disabled.text, text);
    QCOMPARE(disabled.elided, false);

    const QString letters = QStringLiteral("bbb cc-dd");
    const int lettersWidth = greatestWidthThatOverflows(advance(letters));
    QCOMPARE(layOut({letters, lettersWidth, 2, false}).text, QStringLiteral("bbb cc\n-dd"));
}

void tst_TextLayout::breaksAfterAHyphenBeforeAnythingElse()
{
    for (const QString &second : {QStringLiteral("вввв"), QStringLiteral("+bbb"),
                                  QStringLiteral("_bbb"), QStringLiteral("\u0661bbb")}) {
        const QString text = QStringLiteral("aaaa-") + second;
        const int width = greatestWidthThatOverflows(advance(text));
        QCOMPARE(layOut({text, width, 2, false}).text, QStringLiteral("aaaa\n-") + second);
    }
}

void tst_TextLayout::hyphenAtTheEndOfTheTextIsAWordEnd()
{
    // Of the last hyphen only the line before it is measured.
    const QString text = QStringLiteral("aaaa bbbb-");
    const int width = leastWidthThatFits(advance(QStringLiteral("aaaa bbbb")));
    QVERIFY(width < advance(text));
    const Shown wide = layOut({text, static_cast<int>(std::ceil(advance(text))) + 1, 1});
    QCOMPARE(wide.text, text);
    QCOMPARE(wide.elided, false);

    // The space behind it, added for the search, is a lone separator on a line that is full now.
    const Shown narrow = layOut({text, width, 1});
    QCOMPARE(narrow.elided, true);
    QCOMPARE(narrow.text, cut(QStringLiteral("aaaa bbbb- "), width));
}

void tst_TextLayout::wordThatFitsBehindItsHyphenStays()
{
    const QString text = QStringLiteral("aaaa-bbbb");
    const Shown shown = layOut({text, leastWidthThatFits(advance(text)), 2});
    QCOMPARE(shown.text, text);
    QCOMPARE(shown.elided, false);
}

void tst_TextLayout::hyphenatesWhatFits()
{
    const QString word = QStringLiteral("программа");
    const int seven = leastWidthThatFits(hyphenatedWidth(QStringLiteral("програм")));
    const int four = leastWidthThatFits(hyphenatedWidth(QStringLiteral("прог")));
    QVERIFY(seven <= advance(word));

    QCOMPARE(layOut({word, seven, 2}).text, QStringLiteral("програм-\nма"));
    QCOMPARE(layOut({word, seven - 1, 2}).text, QStringLiteral("прог-\nрамма"));
    QVERIFY(advance(QStringLiteral("рамма")) >= four);
    QCOMPARE(layOut({word, four, 3}).text, QStringLiteral("прог-\nрам-\nма"));
    QCOMPARE(layOut({word, seven, 2}).elided, false);
}

void tst_TextLayout::hyphenatesInTheMiddleOfALine()
{
    const QString text = QStringLiteral("это программа передач");
    const int width = leastWidthThatFits(hyphenatedWidth(QStringLiteral("это програм")));
    QVERIFY(width <= advance(QStringLiteral("это программа")));
    QVERIFY(width > advance(QStringLiteral("ма передач")));
    const Shown shown = layOut({text, width, 2});
    QCOMPARE(shown.text, QStringLiteral("это програм-\nма передач"));
    QCOMPARE(shown.elided, false);
    QCOMPARE(lineCountOf(shown), 2);

    QCOMPARE(layOut({text, width - 1, 3}).text.left(9), QStringLiteral("это прог-"));
}

void tst_TextLayout::hyphenatesLineAfterLine()
{
    const QString word = QStringLiteral("программирование");
    const int width = leastWidthThatFits(hyphenatedWidth(QStringLiteral("прог")));
    QVERIFY(hyphenatedWidth(QStringLiteral("рамми")) >= width);
    QVERIFY(hyphenatedWidth(QStringLiteral("миро")) >= width);

    // Two lines: the last of them is not divided any more.
    const Shown two = layOut({word, width, 2});
    QCOMPARE(two.text, QStringLiteral("прог-\n") + cut(QStringLiteral("раммирование "), width));
    QCOMPARE(two.elided, true);

    const Shown many = layOut({word, width, 9});
    QCOMPARE(QString(many.text).remove(QStringLiteral("-\n")), word);
    QCOMPARE(many.elided, false);
    QVERIFY(many.text.startsWith(QStringLiteral("прог-\nрам-\n")));
    QCOMPARE(lineCountOf(many), int(many.text.count(u'\n')) + 1);
}

void tst_TextLayout::wrapsWhereNoSyllableFits()
{
    // Ten characters with the separator, so that it would be split by force, had it no syllables.
    const QString text = QStringLiteral("aaaaaaaa программа");
    const int width = greatestWidthThatOverflows(hyphenatedWidth(QStringLiteral("aaaaaaaa прог")));
    QVERIFY(fineWidth(QStringLiteral("программа ")) <= width);
    QVERIFY(fineWidth(QStringLiteral("aaaaaaaa п")) < width);
    const Shown shown = layOut({text, width, 2});
    QCOMPARE(shown.text, text);
    QCOMPARE(shown.elided, false);

    QCOMPARE(layOut({text, width + 1, 2}).text, QStringLiteral("aaaaaaaa прог-\nрамма"));
}

void tst_TextLayout::doesNotHyphenateTheLastLine()
{
    const QString text = QStringLiteral("это программа");
    const int width = leastWidthThatFits(hyphenatedWidth(QStringLiteral("это прог")));
    QVERIFY(width <= advance(text));
    const Shown one = layOut({text, width, 1});
    QCOMPARE(one.text, cut(text + u' ', width));
    const Shown two = layOut({text, width, 2});
    QCOMPARE(two.text, QStringLiteral("это прог-\nрамма"));
}

void tst_TextLayout::disabledHyphenationWrapsTheWord()
{
    const QString text = QStringLiteral("это программа");
    const int width = leastWidthThatFits(hyphenatedWidth(QStringLiteral("это програм")));
    QVERIFY(width <= advance(text));
    const Shown shown = layOut({text, width, 2, false});
    QCOMPARE(shown.text, text);
    QCOMPARE(shown.elided, false);

    // Nor is it split to fill the line.
    const QString latin = QStringLiteral("aa bbbbbbbbbbb");
    const int latinWidth = greatestWidthThatOverflows(advance(latin));
    QCOMPARE(layOut({latin, latinWidth, 2, false}).text, latin);
    QVERIFY(layOut({latin, latinWidth, 2, true}).text != latin);
}

void tst_TextLayout::disabledHyphenationStillDividesALoneWord()
{
    const QString word = QStringLiteral("программа");
    const int width = leastWidthThatFits(hyphenatedWidth(QStringLiteral("програм")));
    QCOMPARE(layOut({word, width, 2, false}).text, QStringLiteral("програм-\nма"));

    // It is alone on its line after it wrapped, too.
    const int narrow = leastWidthThatFits(hyphenatedWidth(QStringLiteral("програм")));
    QVERIFY(advance(QStringLiteral("aaa")) < narrow);
    QCOMPARE(layOut({QStringLiteral("aaa программа"), narrow, 3, false}).text,
             QStringLiteral("aaa програм-\nма"));

    const QString latin(20, u'b');
    const int count = charactersThatFit(latin, 0, 100);
    QVERIFY(count > 1 && count < 15);
    const QString rest = latin.mid(count);
    QCOMPARE(layOut({latin, 100, 2, false}).text,
             latin.left(count) + newline + cut(rest + u' ', 100));
}

void tst_TextLayout::splitsALoneWordByForce()
{
    const QString word(30, u'b');
    const int width = 100;
    const int count = charactersThatFit(word, 0, width);
    QVERIFY(count > 5 && 30 - 2 * count > 5);

    const QString twice = word.left(count) + newline + word.left(count) + newline;
    const Shown three = layOut({word, width, 3});
    QCOMPARE(three.text, twice + cut(word.mid(2 * count) + u' ', width));
    QCOMPARE(three.elided, true);

    const Shown many = layOut({word, width, 20});
    QVERIFY(many.text.startsWith(twice));
    QCOMPARE(QString(many.text).remove(u'\n'), word);
    QCOMPARE(many.elided, false);
    QVERIFY(!many.text.contains(u'-'));
}

void tst_TextLayout::forcedSplitMeasuresTheFineWidth()
{
    const QString word(30, u'b');
    const int exact = fineWidth(word.left(6));
    QCOMPARE(layOut({word, exact, 20}).text.indexOf(u'\n'), 5);
    QCOMPARE(layOut({word, exact + 1, 20}).text.indexOf(u'\n'), 6);
}

void tst_TextLayout::forcedSplitMeasuresTheWholeLine()
{
    const QString text = QStringLiteral("aaa ") + QString(30, u'b');
    const int exact = fineWidth(QStringLiteral("aaa bbb"));
    QCOMPARE(layOut({text, exact, 20}).text.indexOf(u'\n'), 6);
    QCOMPARE(layOut({text, exact + 1, 20}).text.indexOf(u'\n'), 7);
}

void tst_TextLayout::forcedSplitLeavesFiveCharacters()
{
    // Nine letters and the separator: five at the most stay, however many would fit.
    const QString word(9, u'b');
    const int width = greatestWidthThatOverflows(advance(word));
    QVERIFY(fineWidth(word.left(7)) < width);
    QCOMPARE(layOut({word, width, 2}).text, QStringLiteral("bbbbb\nbbbb"));
    QCOMPARE(layOut({word, fineWidth(word.left(5)) + 1, 2}).text, QStringLiteral("bbbbb\nbbbb"));
    QCOMPARE(layOut({word, fineWidth(word.left(5)), 3}).text.left(5), QStringLiteral("bbbb\n"));
}

void tst_TextLayout::forcedSplitCountsTheSeparatorOfTheWord()
{
    const QString word(6, u'b');
    const int width = greatestWidthThatOverflows(advance(word));
    for (const QString &separator :
         {QString(), QStringLiteral(" i"), QStringLiteral("-i"), QStringLiteral("\ni")}) {
        const Shown shown = layOut({word + separator, width, 9});
        // A hyphen at the word's end is a place for a hyphen, before it.
        const bool hyphen = separator.startsWith(u'-');
        if (hyphen)
            QVERIFY(!shown.text.startsWith(QStringLiteral("bb\nbbbb")));
        else
            QVERIFY2(shown.text.startsWith(QStringLiteral("bb\nbbbb")), qPrintable(shown.text));
    }
}

void tst_TextLayout::longWordIsSplitToFillTheLine()
{
    // Eight letters and the separator are nine characters; the word would fit a line of its own.
    const QString word(8, u'b');
    const QString text = QStringLiteral("aaa ") + word;
    const int width = fineWidth(word + u' ') + 1;
    QVERIFY(width <= advance(text));
    const int count = std::min(charactersThatFit(text, 4, width), 9 - 5);
    QVERIFY(count >= 1);
    const Shown shown = layOut({text, width, 2});
    QCOMPARE(shown.text, QStringLiteral("aaa ") + word.left(count) + newline + word.mid(count));
    QCOMPARE(shown.elided, false);
}

void tst_TextLayout::shortWordIsWrapped()
{
    const QString word(7, u'b');
    const QString text = QStringLiteral("aaa ") + word;
    const int width = fineWidth(word + u' ') + 1;
    QVERIFY(width <= advance(text));
    QVERIFY(fineWidth(QStringLiteral("aaa b")) < width);
    const Shown shown = layOut({text, width, 2});
    QCOMPARE(shown.text, text);
    QCOMPARE(shown.elided, false);
}

void tst_TextLayout::wordThatFitsExactlyIsWrapped()
{
    const QString word(7, u'b');
    const QString text = QStringLiteral("aaa ") + word;
    const int width = fineWidth(word + u' ');
    QVERIFY(width <= advance(text));
    QCOMPARE(layOut({text, width, 2}).text, text);

    // One pixel less, and it counts as too wide for any line.
    const int count = std::min(charactersThatFit(text, 4, width - 1), 8 - 5);
    QVERIFY(count >= 1);
    QCOMPARE(layOut({text, width - 1, 2}).text,
             QStringLiteral("aaa ") + word.left(count) + newline + word.mid(count));
}

void tst_TextLayout::wordTooWideForALineIsSplitWhateverItsLength()
{
    const QString word = QStringLiteral("wwwww");
    const int width = fineWidth(word.left(4));
    QCOMPARE(layOut({word, width, 9}).text.left(2), QStringLiteral("w\n"));
}

void tst_TextLayout::wordTooShortToSplitIsElided()
{
    // Four letters and the separator: none can stay. The word wraps until the limit is reached.
    const QString word = QStringLiteral("wwww");
    const int width = fineWidth(word.left(2));
    for (const int lines : {1, 2, 3, 4, 50, 51, most - 1, most}) {
        const Shown shown = layOut({word, width, lines});
        QCOMPARE(shown.text, cut(word + u' ', width));
        QCOMPARE(shown.elided, true);
    }
}

void tst_TextLayout::forcedSplitCountsALine()
{
    const QString word(30, u'b');
    const int width = 100;
    const int count = charactersThatFit(word, 0, width);
    for (int lines = 1; lines <= 3; ++lines) {
        QString expected;
        for (int i = 1; i < lines; ++i)
            expected += word.left(count) + newline;
        expected += cut(word.mid((lines - 1) * count) + u' ', width);
        QCOMPARE(layOut({word, width, lines}).text, expected);
    }
}

void tst_TextLayout::loneSeparatorSendsTheLineBack_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line"); // the line that overflows

    QTest::newRow("space") << QStringLiteral("aaaa  bbbb") << QStringLiteral("aaaa  ");
    QTest::newRow("hyphen") << QStringLiteral("aaaa--bbbb") << QStringLiteral("aaaa--");
    QTest::newRow("hyphen before a space")
        << QStringLiteral("aaaa- bbbb") << QStringLiteral("aaaa- ");
    QTest::newRow("space before a hyphen")
        << QStringLiteral("aaaa -bbbb") << QStringLiteral("aaaa -");
    QTest::newRow("space at the end") << QStringLiteral("aaaa ") << QStringLiteral("aaaa  ");
}

void tst_TextLayout::loneSeparatorSendsTheLineBack()
{
    QFETCH(QString, text);
    QFETCH(QString, line);

    const int width = leastWidthThatFits(advance(QStringLiteral("aaaa")));
    QVERIFY(advance(line.chopped(1)) >= width);

    // The word before it begins the line again and again, until the lines are used up.
    for (const int lines : {1, 2, 3, 4, 50, 51, most - 1, most}) {
        const Shown shown = layOut({text, width, lines});
        QCOMPARE(shown.text, cut(line, width));
        QCOMPARE(shown.elided, true);
    }
}

void tst_TextLayout::loneSeparatorBeginsTheLineWithTheWordBefore()
{
    // Two spaces where the line is full: the second word goes to the new line and fits there with
    // both of them.
    const QString text = QStringLiteral("www aaaa  b");
    const int width = leastWidthThatFits(advance(QStringLiteral("www aaaa")));
    QVERIFY(advance(QStringLiteral("www aaaa ")) >= width);
    QVERIFY(advance(QStringLiteral("aaaa  b")) < width);

    const Shown two = layOut({text, width, 2});
    QCOMPARE(two.text, text);
    QCOMPARE(two.elided, false);
    QCOMPARE(layOut({text, width, 1}).text, cut(QStringLiteral("www aaaa  "), width));
}

void tst_TextLayout::loneLineSeparatorSendsTheLineBack()
{
    const QString text = QStringLiteral("aaaa \nbb");
    const QString line = QStringLiteral("aaaa \u2028");
    const int width = leastWidthThatFits(advance(QStringLiteral("aaaa")));
    QVERIFY(advance(QStringLiteral("aaaa ")) >= width);
    QVERIFY(advance(QStringLiteral("aaa ")) < width);

    // The limit is reached by the separator in the round in which it sent the line back.
    QCOMPARE(layOut({text, width, 2}).text, cut(line, width));
    QCOMPARE(layOut({text, width, 2}).elided, true);

    // A round later the line begins one character late, fits, and its separator is the third line.
    const Shown three = layOut({text, width, 3});
    QCOMPARE(three.text, QStringLiteral("aaaa") + ellipsisText);
    QCOMPARE(three.elided, true);

    for (const int lines : {4, 5, most}) {
        const Shown enough = layOut({text, width, lines});
        QCOMPARE(enough.text, text);
        QCOMPARE(enough.elided, false);
    }
}

void tst_TextLayout::lineMayBeginBehindItsFirstBreak()
{
    // The separator that sent the line back has it begin behind the space that is looked at next:
    // nothing is to be measured up to there.
    const QString text = QStringLiteral(" \n");
    const int width = greatestWidthThatOverflows(advance(QStringLiteral(" ")));
    QVERIFY(width >= 1);

    const Shown four = layOut({text, width, 4});
    QCOMPARE(four.text, text);
    QCOMPARE(four.elided, false);

    const Shown three = layOut({text, width, 3});
    QCOMPARE(three.text, ellipsisText);
    QCOMPARE(three.elided, true);
}

void tst_TextLayout::richTextIsLeftToQt()
{
    const QString text = QStringLiteral("<b>программа</b> <i>передач</i> на сегодня");
    for (const int maxLineCount : {-1, 1, 2}) {
        const int width = 60;
        const Shown shown = layOut({text, width, maxLineCount, true, pixelFont(), Qt::RichText});
        QCOMPARE(shown.text, text);
        QCOMPARE(shown.elided, false);

        QStaticText expected;
        expected.setTextFormat(Qt::RichText);
        expected.setText(text);
        expected.setTextWidth(width);
        expected.prepare(QTransform(), pixelFont());
        QCOMPARE(shown.size.height(), static_cast<int>(std::ceil(expected.size().height())));
    }

    // Even where the text is narrower, the limit stays its width.
    const Shown wide =
        layOut({QStringLiteral("<b>a</b>"), 500, 1, true, pixelFont(), Qt::RichText});
    QCOMPARE(wide.size.width(), 500);
}

void tst_TextLayout::otherFormatsAreBroken_data()
{
    QTest::addColumn<Qt::TextFormat>("format");

    QTest::newRow("plain") << Qt::PlainText;
    QTest::newRow("auto") << Qt::AutoText;
    QTest::newRow("markdown") << Qt::MarkdownText;
}

void tst_TextLayout::otherFormatsAreBroken()
{
    QFETCH(Qt::TextFormat, format);

    const QString text = QStringLiteral("<b>программа</b> передач");
    const int width = leastWidthThatFits(hyphenatedWidth(QStringLiteral("<b>програм")));
    const Shown elided = layOut({text, width, 1, true, pixelFont(), format});
    QCOMPARE(elided.text, cut(QStringLiteral("<b>программа</b> "), width));
    QCOMPARE(elided.elided, true);
    QCOMPARE(layOut({text, width, 2, true, pixelFont(), format}).text.left(12),
             QStringLiteral("<b>програм-\n"));
}

void tst_TextLayout::elisionIsForgottenByAPlainLayoutOnly()
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

void tst_TextLayout::layoutIsDoneOnlyWhenNeeded()
{
    // A width of 0 keeps the layout that another width gave, and no layout is due.
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

void tst_TextLayout::layoutUsesTheFontOfTheText()
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

void tst_TextLayout::endsWithoutLineLimit_data()
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

// A break candidate that would have the pass go in circles is taken as if its line fitted.
void tst_TextLayout::endsWithoutLineLimit()
{
    QFETCH(QString, text);

    for (const int maxLineCount : {0, -1, least, least + 1}) {
        for (const int width : {1, 8, 20, 35, 45, 60, 100}) {
            for (const bool hyphenation : {false, true}) {
                const Shown shown = layOut({text, width, maxLineCount, hyphenation});
                QCOMPARE(shown.text, QString(text).replace(lineSeparator, u'\n'));
                QCOMPARE(shown.elided, false);

                // Qt itself breaks at the spaces.
                QStaticText expected(text);
                expected.setTextWidth(std::min(width, fineWidth(text)));
                expected.prepare(QTransform(), pixelFont());
                QCOMPARE(shown.size, QSize(static_cast<int>(std::ceil(expected.size().width())),
                                           static_cast<int>(std::ceil(expected.size().height()))));
            }
        }
    }
}

void tst_TextLayout::separatesHyphensWithoutLineLimit()
{
    // Behind the hyphen every word fits, so that no round is an endless one.
    const QString text = QStringLiteral("aaaa-bbbb-cccc");
    const int width = greatestWidthThatOverflows(advance(QStringLiteral("aaaa-bbbb")));
    for (const int maxLineCount : {0, -1, least})
        QCOMPARE(layOut({text, width, maxLineCount}).text, QStringLiteral("aaaa\n-bbbb\n-cccc"));
}

// Every further separator would leave the word as wide as it is, on yet another line.
void tst_TextLayout::separatesAHyphenOnceWithoutLineLimit_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");

    QTest::newRow("wide word") << QStringLiteral("x-wwww") << QStringLiteral("x\n-wwww");
    QTest::newRow("wide words") << QStringLiteral("x-wwww-wwww wwww-i")
                                << QStringLiteral("x\n-wwww\n-wwww wwww\n-i");
    QTest::newRow("at the beginning") << QStringLiteral("-wwww") << QStringLiteral("\n-wwww");
    QTest::newRow("wide paragraph")
        << QStringLiteral("x-wwww\u2028i x") << QStringLiteral("x\n-wwww\ni x");
    QTest::newRow("spaces behind it")
        << QStringLiteral("x-wwww  i") << QStringLiteral("x\n-wwww  i");
}

void tst_TextLayout::separatesAHyphenOnceWithoutLineLimit()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    constexpr int width = 45;
    QVERIFY(advance(QStringLiteral("wwww")) >= width);

    for (const int maxLineCount : {0, -1, least}) {
        for (const bool hyphenation : {true, false}) {
            const Shown laidOut = layOut({text, width, maxLineCount, hyphenation});
            QCOMPARE(laidOut.text, shown);
            QCOMPARE(laidOut.elided, false);
        }
    }
}

// A last word of a paragraph that fits no line counts two lines in every round. Whether the first
// or the second of them reaches the limit decides where the line begins that is cut.
void tst_TextLayout::endlessRoundsOfTwoLinesReachTheLimit()
{
    const QString text = QStringLiteral("wwww\ni");
    const int width = 45;
    QVERIFY(advance(QStringLiteral("www")) >= width);
    const QFontMetricsF metrics(pixelFont());
    for (const QString &line : {QStringLiteral("wwww\u2028"), QStringLiteral("www\u2028")}) {
        const QString elided = metrics.elidedText(line, Qt::ElideRight, width);
        QCOMPARE(elided, QStringLiteral("w") + ellipsisText);
        QVERIFY(metrics.horizontalAdvance(elided) <= width);
    }

    for (const int lines : {2, 4, 50, 1000, most - 1}) {
        const Shown shown = layOut({text, width, lines});
        QCOMPARE(shown.text, QStringLiteral("w") + ellipsisText);
        QCOMPARE(shown.elided, true);
    }
    for (const int lines : {3, 5, 51, 1001, most}) {
        const Shown shown = layOut({text, width, lines});
        QCOMPARE(shown.text, QStringLiteral("ww") + ellipsisText);
        QCOMPARE(shown.elided, true);
    }
}

void tst_TextLayout::endsAtAnyLineLimit_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("wide word") << QStringLiteral("iii wwww");
    QTest::newRow("lone space") << QStringLiteral("www  www");
    QTest::newRow("lone separator") << QStringLiteral("www \u2028www");
    QTest::newRow("lone hyphen") << QStringLiteral("www--www");
    QTest::newRow("hyphen") << QStringLiteral("x-www");
    QTest::newRow("wide paragraph") << QStringLiteral("www wwww\u2028www");
}

void tst_TextLayout::endsAtAnyLineLimit()
{
    QFETCH(QString, text);

    QElapsedTimer timer;
    timer.start();
    for (const int lines : {2, 5, 1000, most - 1, most}) {
        for (const int width : {1, 8, 20, 35, 45, 60}) {
            for (const bool hyphenation : {false, true}) {
                const Shown shown = layOut({text, width, lines, hyphenation});
                QVERIFY(shown.text.size() < 4 * 64);
                QVERIFY(shown.elided || QString(shown.text).remove(u'\n').size() >= 4);
            }
        }
    }
    // Counting up to the limit would take hours.
    QVERIFY(timer.elapsed() < 60'000);
}

void tst_TextLayout::boundsTheSeparatorsBeforeAHyphen_data()
{
    QTest::addColumn<int>("textLength");
    QTest::addColumn<int>("maxLineCount");
    QTest::addColumn<int>("separators");

    // The limit is reached in the round that would insert the next separator.
    QTest::newRow("two lines") << 5 << 2 << 1;
    QTest::newRow("three lines") << 5 << 3 << 2;
    QTest::newRow("64 lines") << 5 << 64 << 63;
    QTest::newRow("65 lines") << 5 << 65 << 64;
    QTest::newRow("66 lines") << 5 << 66 << 64;
    QTest::newRow("1000 lines") << 5 << 1000 << 64;
    QTest::newRow("1001 lines") << 5 << 1001 << 64;
    QTest::newRow("as many as an int holds") << 5 << most << 64;
    QTest::newRow("one less") << 5 << most - 1 << 64;
    QTest::newRow("64 characters") << 64 << most << 64;
    QTest::newRow("65 characters") << 65 << most << 65;
    QTest::newRow("longer text") << 200 << most << 200;
    QTest::newRow("longer text, fewer lines") << 200 << 100 << 99;
    QTest::newRow("longer text, as many lines") << 200 << 201 << 200;
}

void tst_TextLayout::boundsTheSeparatorsBeforeAHyphen()
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
        QCOMPARE(shown.text, QStringLiteral("x") + QString(separators, u'\n')
                                 + cut(QStringLiteral("-www "), width));
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
        QCOMPARE(shown.text.section(newline, 0, 0), beginning.isEmpty() ? shown.text : beginning);
    }
}

void tst_TextLayout::breaksATextWithABrokenCharacter()
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

    // So it is with a copy that is laid out itself.
    TextRenderer copy(renderer);
    copy.setTextWidth(renderer.textWidth());
    copy.relayout();
    QVERIFY(copy.isTextElided());
    QCOMPARE(copy.displayText(), renderer.displayText());
}

void tst_TextLayout::replacesBrokenCharactersOnly_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");

    const QString high = QChar(0xd83d);
    const QString low = QChar(0xde00);
    const QString pair = high + low;
    const QString replaced = QStringLiteral("\uFFFD");
    const QString word = QStringLiteral("word");

    QTest::newRow("high at the start") << high + word << replaced + word;
    QTest::newRow("high at the end") << word + high << word + replaced;
    QTest::newRow("low at the start") << low + word << replaced + word;
    QTest::newRow("low at the end") << word + low << word + replaced;
    QTest::newRow("the wrong way round") << low + high << replaced + replaced;
    QTest::newRow("high before a pair") << high + pair << replaced + pair;
    QTest::newRow("low before a pair") << low + pair << replaced + pair;
    QTest::newRow("high after a pair") << pair + high << pair + replaced;
    QTest::newRow("low after a pair") << pair + low << pair + replaced;
}

void tst_TextLayout::replacesBrokenCharactersOnly()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);

    QCOMPARE(layOut({.text = text, .width = 600}).text, shown);
}

void tst_TextLayout::longTextsEnd_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("width");

    const int length = isRunReduced() ? 1000 : 20'000;
    const int shorter = length / 5; // of lines there are many
    const auto repeated = [](const QString &part, int count) {
        return part.repeated(count / part.size() + 1).left(count);
    };
    const auto add = [&](const char *name, const QString &part) {
        QTest::addRow("%s", name) << repeated(part, length) << 600;
        QTest::addRow("%s in a narrow box", name) << repeated(part, shorter) << 45;
        QTest::addRow("%s one by one", name) << repeated(part, shorter) << 20;
        QTest::addRow("%s in a wide box", name) << repeated(part, length) << 2 * length;
    };
    add("one Latin word", QStringLiteral("b"));
    add("one Russian word", QStringLiteral("программа"));
    add("vowels", QStringLiteral("а"));
    add("one word of joined letters", QStringLiteral("ب"));
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

void tst_TextLayout::longTextsEnd()
{
    QFETCH(QString, text);
    QFETCH(int, width);

    for (const int maxLineCount : {-1, 1, 40, most}) {
        const Shown shown = layOut({text, width, maxLineCount});
        QVERIFY(shown.text.size() <= 4 * text.size() + 4 * 64);
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
    rlimit taken{};
    QCOMPARE(getrlimit(RLIMIT_AS, &taken), 0);
    // An emulator may let the call succeed and limit nothing.
    if (taken.rlim_cur != limited.rlim_cur)
        QSKIP("The address space cannot be limited here.");

    bool allocated = true;
    Shown shown{};
    try {
        for (const int maxLineCount : {most, most - 1, most / 2, least, least + 1})
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
