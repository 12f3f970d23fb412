#include "layoutinvariants.h"

#include "referencelayout.h"
#include "textsupport.h"

#include "support/shapercalls.h"

#include <QFontMetricsF>
#include <QTextDocument>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <set>
#include <utility>

namespace ovelin::tests {

namespace {

constexpr char16_t newline = u'\n';
constexpr char16_t hyphen = u'-';

int saturated(double position)
{
    return static_cast<int>(std::clamp<double>(position, std::numeric_limits<int>::min(),
                                               std::numeric_limits<int>::max()));
}

int widthLimit(const TextRenderer &renderer)
{
    return renderer.textWidth() >= 1 ? renderer.textWidth() : renderer.maxTextWidth();
}

bool isBrokenByTheLibrary(const TextRenderer &renderer)
{
    return widthLimit(renderer) >= 1 && renderer.textFormat() != Qt::RichText;
}

bool isTrimmedBeforeEllipsis(QChar c)
{
    return c.isSpace() || c.isPunct();
}

QString quoted(const QString &text)
{
    QString result;
    for (const QChar c : text) {
        if (c.unicode() > 0x20 && c.unicode() < 0x7f)
            result += c;
        else
            result += QStringLiteral("\\u%1").arg(int(c.unicode()), 4, 16, QChar(u'0'));
    }
    return u'"' + result + u'"';
}

QString comparison(const char *what, const QString &shown, const QString &expected)
{
    return QString::fromLatin1(what)
           + QStringLiteral("\n   shown    %1\n   expected %2")
                 .arg(quoted(shown), quoted(expected));
}

// The values of a layout that a caller can read.
struct Appearance
{
    explicit Appearance(const TextRenderer &renderer)
        : text(renderer.text())
        , displayText(renderer.displayText())
        , boundingSize(renderer.boundingSize())
        , boundingRect(renderer.boundingRect())
        , geometry(renderer.geometry())
        , alignedTextTopLeft(renderer.alignedTextTopLeft())
        , needRelayout(renderer.isNeedRelayout())
    {
    }

    QString difference(const char *what, const Appearance &expected) const
    {
        if (text != expected.text)
            return comparison(what, text, expected.text);
        if (displayText != expected.displayText)
            return comparison(what, displayText, expected.displayText);
        if (needRelayout != expected.needRelayout)
            return QString::fromLatin1(what) + QStringLiteral(": needs a relayout");
        if (boundingSize != expected.boundingSize || boundingRect != expected.boundingRect
            || geometry != expected.geometry || alignedTextTopLeft != expected.alignedTextTopLeft)
            return QString::fromLatin1(what)
                   + QStringLiteral(": %1, expected %2").arg(described(), expected.described());
        return {};
    }

    QString described() const
    {
        return QStringLiteral("size %1x%2, at %3, %4, box at %5, %6, %7x%8")
            .arg(boundingSize.width())
            .arg(boundingSize.height())
            .arg(alignedTextTopLeft.x())
            .arg(alignedTextTopLeft.y())
            .arg(geometry.x())
            .arg(geometry.y())
            .arg(geometry.width())
            .arg(geometry.height());
    }

    QString text;
    QString displayText;
    QSize boundingSize;
    QRect boundingRect;
    QRect geometry;
    QPoint alignedTextTopLeft;
    bool needRelayout;
};

// The most measurements for one line. The library shapes the run from which it reads the line. It measures
// the line up to the word that overflows, a prefix of this word with a hyphen, the word alone, and up to four
// prefixes that end within half an em of the limit (four of the narrowest letters are an em wide). Then Qt
// shapes the line and its separator to show them.
constexpr qint64 measurementsPerLine = 1 + 1 + 1 + 1 + 4 + 2;

// True if the advances of all characters can be read from a shaped run and are not near 0.
bool isOrdinary(const TextRenderer &renderer)
{
    // In pixels. In larger fonts the advances of short texts overflow.
    constexpr int largestFont = 10'000;
    constexpr double leastAdvance = 1; // pixels
    const QFont font = renderer.textFont();
    const auto isOrdinaryCharacter = [](QChar c) {
        return (c >= u' ' && c <= u'~') || (c >= u'А' && c <= u'я') || c == newline
               || c == lineSeparator;
    };
    return std::ranges::all_of(renderer.text(), isOrdinaryCharacter) && font.letterSpacing() == 0
           && font.wordSpacing() == 0 && font.pixelSize() <= largestFont
           && QFontMetricsF(font).horizontalAdvance(u'i') >= leastAdvance;
}

qsizetype longestTrimmedRange(const QString &text)
{
    qsizetype longest = 0;
    qsizetype size = 0;
    for (const QChar c : text) {
        size = isTrimmedBeforeEllipsis(c) ? size + 1 : 0;
        longest = std::max(longest, size);
    }
    return longest;
}

// The most measurements for a layout. Lines end at spaces, newlines and hyphens. The text shown has these
// characters, unless they were trimmed before the ellipsis. If the ellipsis does not fit, nothing is shown, and
// each character of the source counts. In a text that is not ordinary, each character may be measured, after a
// binary search.
qint64 mostMeasurements(const TextRenderer &renderer)
{
    const QString source = renderer.text();
    const QString shown = renderer.displayText();
    const auto mayEndLine = [](QChar c) { return c == u' ' || c == newline || c == hyphen; };

    const bool ordinary = isOrdinary(renderer);
    qint64 ends = 1 + longestTrimmedRange(source);
    if (shown.isEmpty())
        ends += source.size();
    else if (ordinary)
        ends += std::ranges::count_if(shown, mayEndLine);
    else
        ends += shown.size();
    return ends * (measurementsPerLine + (ordinary ? 0 : std::bit_width(size_t(source.size()))));
}

// Qt calls the shaper for each range of one script, direction and font.
int callsPerMeasurement(const TextRenderer &renderer)
{
    const QFontMetricsF metrics(renderer.textFont());
    const QString text = withWholeCharacters(renderer.text());
    return std::max(1, countShaperCalls([&] { metrics.horizontalAdvance(text); }));
}

bool isReadAsDocument(const TextRenderer &renderer)
{
    return renderer.textFormat() == Qt::MarkdownText
           || (renderer.textFormat() == Qt::AutoText
               && Qt::mightBeRichText(renderer.displayText()));
}

// The part of a rectangle that ints can describe.
QRect saturatedRect(const QPoint &topLeft, const QSize &size)
{
    return {topLeft, QPoint(saturated(double(topLeft.x()) + size.width() - 1),
                            saturated(double(topLeft.y()) + size.height() - 1))};
}

// Checks the positions of the text and of its box. The heights of the two are rounded differently.
QString positionViolation(const TextRenderer &renderer, const Appearance &actual)
{
    const QPoint boxCorner = renderer.textTopLeft();
    const QPoint textCorner =
        actual.alignedTextTopLeft.isNull() ? boxCorner : actual.alignedTextTopLeft;
    const QRect textRect = saturatedRect(textCorner, actual.boundingSize);
    if (actual.boundingRect != textRect)
        return QStringLiteral("the text is elsewhere");

    const auto isBox = [&](int roundedBy) {
        const QSize size(renderer.textWidth(), actual.boundingSize.height() + roundedBy);
        return actual.geometry == saturatedRect(boxCorner, size);
    };
    const bool isInPlace =
        renderer.textWidth() >= 1 ? isBox(-1) || isBox(0) || isBox(1) : actual.geometry == textRect;
    return isInPlace ? QString() : QStringLiteral("the box is elsewhere");
}

// Moves the text back to the corner, from where an earlier alignment may have moved it.
void resetAlignment(TextRenderer &renderer)
{
    const QPoint topLeft = renderer.textTopLeft();
    renderer.setTextTopLeft(topLeft.isNull() ? QPoint(1, 1) : QPoint());
    renderer.setTextTopLeft(topLeft);
}

} // namespace

// A hyphen before a line break may be one of the source or an inserted one. So the function keeps all
// positions in the source that the shown characters may have reached.
bool isSourceWithBreaks(const QString &shown, const QString &source, Extent extent)
{
    std::set<qsizetype> positions{0};
    std::set<qsizetype>
        positionsAfterInsertedHyphen; // the next character is the hyphen's line break

    for (qsizetype i = 0; i < shown.size(); ++i) {
        const QChar c = shown.at(i);
        const bool breakFollows = i + 1 < shown.size() && shown.at(i + 1) == newline;
        std::set<qsizetype> next = std::exchange(positionsAfterInsertedHyphen, {});
        for (const qsizetype position : positions) {
            if (position < source.size() && source.at(position) == c)
                next.insert(position + 1);
            else if (c == newline)
                next.insert(position);
            if (c == hyphen && breakFollows)
                positionsAfterInsertedHyphen.insert(position);
        }
        positions = std::move(next);
    }
    return extent == Extent::All ? positions.contains(source.size()) : !positions.empty();
}

QString sourceViolation(const TextRenderer &renderer)
{
    const QString shown = renderer.displayText();
    const QString text = QString(renderer.text()).replace(lineSeparator, newline);
    if (!isBrokenByTheLibrary(renderer))
        return shown == text ? QString() : comparison("not the source", shown, text);
    const QString source = withWholeCharacters(text);

    if (!renderer.isTextElided()) {
        return isSourceWithBreaks(shown, source, Extent::All)
                   ? QString()
                   : comparison("not the source with breaks", shown, source);
    }
    if (shown.isEmpty())
        return {};
    if (!shown.endsWith(ellipsis))
        return comparison("elided without an ellipsis", shown, source);
    const QString prefix = shown.chopped(1);
    if (!prefix.isEmpty() && isTrimmedBeforeEllipsis(prefix.back()))
        return comparison("not trimmed before the ellipsis", shown, source);
    return isSourceWithBreaks(prefix, source, Extent::Prefix)
               ? QString()
               : comparison("not a prefix of the source with breaks", shown, source);
}

QString lineLimitViolation(const TextRenderer &renderer)
{
    const int limit = renderer.maxLineCount();
    if (!isBrokenByTheLibrary(renderer))
        return {};
    if (limit < 1)
        return renderer.isTextElided() ? QStringLiteral("elided without a limit") : QString();
    // With a limit of one line the text keeps its newlines.
    if (renderer.text().contains(newline))
        return {};
    const QString shown = renderer.displayText();
    if (shown.count(newline) < limit)
        return {};
    return QStringLiteral("more than %1 lines: %2").arg(QString::number(limit), quoted(shown));
}

QString repetitionViolation(TextRenderer &renderer)
{
    const Appearance before(renderer);
    const bool wasElided = renderer.isTextElided();
    renderer.relayout();
    const QString untouched = Appearance(renderer).difference("without a change", before);
    if (!untouched.isEmpty())
        return untouched;

    layOutAgain(renderer);
    if (renderer.isTextElided() != wasElided)
        return QStringLiteral("elided only once");
    return Appearance(renderer).difference("laid out again", before);
}

QString copyViolation(const TextRenderer &renderer)
{
    const Appearance original(renderer);
    TextRenderer copy(renderer);
    const QString copied = Appearance(copy).difference("copied", original);
    if (!copied.isEmpty())
        return copied;

    layOutAgain(copy);
    // A copy starts as not elided. Only a layout that breaks lines changes this.
    if (isBrokenByTheLibrary(renderer) && copy.isTextElided() != renderer.isTextElided())
        return QStringLiteral("elided in one of original and copy");
    return Appearance(copy).difference("copied and laid out", original);
}

QString geometryViolation(TextRenderer &renderer, int availableHeight)
{
    resetAlignment(renderer);
    renderer.relayout();

    TextRenderer fresh;
    fresh.setTextFont(renderer.textFont());
    fresh.setTextFormat(renderer.textFormat());
    fresh.setTextAlignment(renderer.textAlignment());
    fresh.setMaxLineCount(renderer.maxLineCount());
    fresh.setHyphenationEnabled(renderer.hyphenationEnabled());
    fresh.setMaxTextWidth(renderer.maxTextWidth());
    fresh.setTextWidth(renderer.textWidth());
    fresh.setAvailableHeight(availableHeight);
    fresh.setTextTopLeft(renderer.textTopLeft());
    fresh.setText(renderer.text());
    fresh.relayout();
    return Appearance(renderer).difference("against a new renderer", Appearance(fresh));
}

QString moveViolation(TextRenderer &renderer, const QPoint &topLeft)
{
    Appearance expected(renderer);
    const auto moved = [](int position, int from, int to) {
        return saturated(double(position) + to - from);
    };
    const QPoint from = renderer.textTopLeft();
    expected.alignedTextTopLeft = {moved(expected.alignedTextTopLeft.x(), from.x(), topLeft.x()),
                                   moved(expected.alignedTextTopLeft.y(), from.y(), topLeft.y())};

    if (countShaperCalls([&] { renderer.move(topLeft); }) > 0)
        return QStringLiteral("measured by a move");

    const Appearance actual(renderer);
    const QString misplaced = positionViolation(renderer, actual);
    if (!misplaced.isEmpty())
        return misplaced;
    expected.boundingRect = actual.boundingRect;
    expected.geometry = actual.geometry;
    return actual.difference("moved", expected);
}

QString widthViolation(TextRenderer &renderer, int width)
{
    Appearance expected(renderer);
    const bool wasDirty = renderer.isNeedRelayout();
    const int calls = countShaperCalls([&] { renderer.setTextWidth(width); });
    if (renderer.isNeedRelayout())
        return {};
    if (wasDirty || calls > 0)
        return QStringLiteral("laid out by setting the width");

    const Appearance actual(renderer);
    const QString misplaced = positionViolation(renderer, actual);
    if (!misplaced.isEmpty())
        return misplaced;
    // The vertical position may differ: a move may have saturated it, and setting the width computes it again.
    expected.alignedTextTopLeft.setY(actual.alignedTextTopLeft.y());
    if (width >= 1) {
        const int textWidth =
            TextRenderer::fineTextWidth(renderer.text(), QFontMetricsF(renderer.textFont()));
        if (textWidth > width)
            return QStringLiteral("kept in a box that is too narrow");
        const double spare = double(width) - textWidth;
        const int left = renderer.textTopLeft().x();
        if (renderer.textAlignment() & Qt::AlignHCenter)
            expected.alignedTextTopLeft.setX(saturated(left + std::ceil(spare / 2)));
        else if (renderer.textAlignment() & Qt::AlignRight)
            expected.alignedTextTopLeft.setX(saturated(left + spare));
    }
    expected.boundingRect = actual.boundingRect;
    expected.geometry = actual.geometry;
    return actual.difference("kept", expected);
}

QString shapingViolation(TextRenderer &renderer)
{
    if (!isBrokenByTheLibrary(renderer) || isReadAsDocument(renderer))
        return {};
    const int calls = countShaperCalls([&renderer] { layOutAgain(renderer); });
    const qint64 most = mostMeasurements(renderer) * callsPerMeasurement(renderer);
    if (calls <= most)
        return {};
    return QStringLiteral("%1 calls of the text shaper, not %2, for %3")
        .arg(QString::number(calls), QString::number(most), quoted(renderer.displayText()));
}

QString referenceViolation(const TextRenderer &renderer, const ReferenceLayout &expected)
{
    if (renderer.displayText() != expected.displayText)
        return comparison("not the reference layout", renderer.displayText(), expected.displayText);
    if (renderer.text().isEmpty())
        return {};
    // The renderer's size saturates at the greatest int.
    const QSizeF size(std::ceil(expected.size.width()), std::ceil(expected.size.height()));
    constexpr double highest = std::numeric_limits<int>::max();
    const QSizeF bounded = size.boundedTo({highest, highest});
    const QSize actual = renderer.boundingSize();
    if (QSizeF(actual) == bounded)
        return {};
    return QStringLiteral("not the size of the reference layout: %1 x %2, not %3 x %4, for %5")
        .arg(actual.width())
        .arg(actual.height())
        .arg(bounded.width(), 0, 'f', 0)
        .arg(bounded.height(), 0, 'f', 0)
        .arg(quoted(renderer.text()));
}

QString layoutViolation(TextRenderer &renderer, int availableHeight)
{
    for (const QString &violation :
         {sourceViolation(renderer), lineLimitViolation(renderer), copyViolation(renderer),
          repetitionViolation(renderer), geometryViolation(renderer, availableHeight),
          shapingViolation(renderer)}) {
        if (!violation.isEmpty())
            return violation;
    }
    return {};
}

void layOutAgain(TextRenderer &renderer)
{
    const bool enabled = renderer.hyphenationEnabled();
    renderer.setHyphenationEnabled(!enabled);
    renderer.setHyphenationEnabled(enabled);
    renderer.relayout();
}

} // namespace ovelin::tests
