#include "layoutcomparison.h"

#include "layoutinvariants.h"
#include "textsupport.h"

#include <ovelin/textrenderer.h>

#include <QTest>

#include <algorithm>

namespace ovelin::tests {

namespace {

bool isHardToRead(QChar c)
{
    return !c.isPrint() || c.isMark() || c.isSurrogate() || c == lineSeparator
           || c.category() == QChar::Other_Format;
}

void count(const TextRenderer &renderer, const ReferenceInput &input,
           const ReferenceLayout &expected, LayoutCounts &counts)
{
    ++counts.compared;
    counts.elided += expected.elided;
    counts.hyphenated += expected.displayText.contains(QStringLiteral("-\n"));
    counts.broken += expected.displayText.count(u'\n') > renderer.textLines().size() - 1;
    counts.repeated += expected.candidates > 4 * input.text.size() + 8;
}

void compareWith(const ReferenceLayout &expected, const ReferenceInput &input, LayoutCounts *counts)
{
    const QString description = described(input);
    QVERIFY2(expected.ended, qPrintable(description));

    TextRenderer renderer;
    apply(renderer, input);
    if (counts)
        count(renderer, input, expected, *counts);

    const QString violation = referenceViolation(renderer, expected);
    QVERIFY2(violation.isEmpty(), qPrintable(description + QStringLiteral(": ") + violation));
    QVERIFY2(renderer.isTextElided() == expected.elided, qPrintable(description));
    if (input.textWidth >= 1)
        QCOMPARE(renderer.geometry().height(), qRound(expected.size.height()));
}

void compareWidth(const ReferenceLayout &expected, const ReferenceInput &input)
{
    TextRenderer renderer;
    renderer.setTextAlignment(Qt::AlignRight);
    apply(renderer, input);
    const int spare = input.textWidth < 1 ? 0 : input.textWidth - expected.wholeWidth;
    QVERIFY2(renderer.alignedTextTopLeft().x() == std::max(0, spare), qPrintable(described(input)));

    const bool fits = input.textWidth >= expected.wholeWidth;
    for (const int width : {input.textWidth, expected.wholeWidth - 1, expected.wholeWidth, 0}) {
        TextRenderer other;
        apply(other, input);
        other.setTextWidth(width);
        const bool keepsLayout =
            !expected.elided && (width == 0 || (fits && width >= expected.wholeWidth));
        QVERIFY2(other.isNeedRelayout() == !keepsLayout, qPrintable(described(input)));
    }
}

} // namespace

QByteArray LayoutCounts::description() const
{
    return QStringLiteral("%1 compared, %2 elided, %3 hyphenated, %4 broken, %5 repeated")
        .arg(compared)
        .arg(elided)
        .arg(hyphenated)
        .arg(broken)
        .arg(repeated)
        .toUtf8();
}

QString described(const ReferenceInput &input)
{
    QString escaped;
    for (const QChar c : input.text) {
        if (isHardToRead(c))
            escaped += QStringLiteral("\\u%1").arg(int(c.unicode()), 4, 16, QChar(u'0'));
        else
            escaped += c;
    }
    return QStringLiteral("\"%1\", width %2, maximal width %3, %4 lines, hyphenation %5, "
                          "font %6 of %7 px, spacing %8 and %9, format %10, stretch %11, "
                          "capitalization %12, bold %13, italic %14")
        .arg(escaped)
        .arg(input.textWidth)
        .arg(input.maxTextWidth)
        .arg(input.maxLineCount)
        .arg(input.hyphenationEnabled)
        .arg(input.font.family())
        .arg(input.font.pixelSize())
        .arg(input.font.letterSpacing())
        .arg(input.font.wordSpacing())
        .arg(input.format)
        .arg(input.font.stretch())
        .arg(input.font.capitalization())
        .arg(input.font.bold())
        .arg(input.font.italic());
}

void apply(TextRenderer &renderer, const ReferenceInput &input)
{
    renderer.setTextFont(input.font);
    renderer.setTextFormat(input.format);
    renderer.setMaxLineCount(input.maxLineCount);
    renderer.setHyphenationEnabled(input.hyphenationEnabled);
    renderer.setTextWidth(input.textWidth);
    renderer.setMaxTextWidth(input.maxTextWidth);
    renderer.setText(input.text);
    renderer.relayout();
}

void compareLayout(const ReferenceInput &input, LayoutCounts *counts)
{
    compareWith(referenceLayoutAtAnyLimit(input, candidateBudget), input, counts);
}

void compare(const ReferenceInput &input, LayoutCounts *counts)
{
    const ReferenceLayout expected = referenceLayoutAtAnyLimit(input, candidateBudget);
    compareWith(expected, input, counts);
    if (!QTest::currentTestFailed())
        compareWidth(expected, input);
}

} // namespace ovelin::tests
