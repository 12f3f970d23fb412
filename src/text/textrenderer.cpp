#include <ovelin/textrenderer.h>

#include "finetextwidth_p.h"
#include "hyphenation_p.h"
#include "textlayout_p.h"
#include "textrenderer_p.h"

#include <QFontMetricsF>
#include <QLine>
#include <QMargins>
#include <QPainter>
#include <QPen>
#include <QTextOption>
#include <QTransform>

#include <cmath>

namespace ovelin {

namespace {

// From this line limit on, newlines become line separators. Without a limit they do not.
constexpr int fewestLinesToBreak = 2;

QString withLineSeparators(QString text)
{
    return text.replace(newline, lineSeparator);
}

// A half of a surrogate pair that stands alone becomes a replacement character (U+FFFD).
QString withWholeCharacters(QString text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text.at(i).isSurrogate())
            continue;
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (isPair)
            ++i;
        else
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

// QRect stores its right and bottom edges as ints. An edge outside the range of int becomes the nearest int.
QRect boundedRect(const QPoint &topLeft, const QSize &size)
{
    QRect rect;
    rect.setCoords(topLeft.x(), topLeft.y(), toInt(double(topLeft.x()) + size.width() - 1),
                   toInt(double(topLeft.y()) + size.height() - 1));
    return rect;
}

} // namespace

TextRendererPrivate::TextRendererPrivate(TextRenderer *renderer)
    : owner(renderer)
{
    staticText.setTextFormat(Qt::AutoText);
    staticText.setPerformanceHint(QStaticText::AggressiveCaching);
    staticText.setTextOption(QTextOption(Qt::AlignLeft));
}

// A size in points depends on the device; only a font with a size in pixels is laid out and drawn.
bool TextRendererPrivate::canBeLaidOut() const
{
    return font.pixelSize() >= 0 && !text.isEmpty();
}

std::optional<int> TextRendererPrivate::widthLimit() const
{
    if (textWidth >= 1)
        return textWidth;
    if (maxTextWidth >= 1)
        return maxTextWidth;
    return std::nullopt;
}

int TextRendererPrivate::effectiveTextWidth()
{
    if (!effectiveWidth) {
        fineWidth = TextRenderer::fineTextWidth(text, QFontMetricsF(font));
        effectiveWidth = std::min(*fineWidth, widthLimit().value_or(*fineWidth));
    }
    return *effectiveWidth;
}

void TextRendererPrivate::markDirty()
{
    needRelayout = true;
    effectiveWidth.reset();
    fineWidth.reset();
    applyLineSeparators();
}

void TextRendererPrivate::applyLineSeparators()
{
    if (maxLineCount < fewestLinesToBreak || lineSeparatorsApplied)
        return;
    text = withLineSeparators(text);
    lineSeparatorsApplied = true;
}

void TextRendererPrivate::performLayout()
{
    if (!needRelayout || !canBeLaidOut())
        return;

    const auto limit = widthLimit();
    staticText.setTextWidth(limit ? *limit : effectiveTextWidth());
    // Qt wraps rich text by itself.
    if (limit && staticText.textFormat() != Qt::RichText)
        breakAtWidthLimit();
    else
        staticText.setText(text);

    staticText.prepare(QTransform(), font);
    updateAlignedTextTopLeft();
    needRelayout = false;
}

void TextRendererPrivate::breakAtWidthLimit()
{
    const double limit = staticText.textWidth();
    const BrokenText broken = breakText(limit);
    textElided = broken.elided;
    // A text that is not well-formed was measured with replacement characters, and its own fine width can
    // differ: with letter spacing, half a surrogate pair can be wider than a replacement character.
    if (broken.fineWidth && textIsWellFormed) {
        fineWidth = broken.fineWidth;
        effectiveWidth = std::min(*fineWidth, toInt(limit));
    }
    if (!textElided)
        staticText.setTextWidth(effectiveTextWidth());
    staticText.setText(broken.text);
}

// The layout takes only well-formed text, so a half of a surrogate pair that stands alone is replaced.
BrokenText TextRendererPrivate::breakText(double limit) const
{
    const QString wellFormed = textIsWellFormed ? text : withWholeCharacters(text);
    return breakIntoLines(
        wellFormed, font,
        {.width = limit, .maxLineCount = maxLineCount, .hyphenationEnabled = hyphenationEnabled});
}

// Qt aligns each line inside the width of the static text. This function moves the text as a whole, to align
// it in the box.
void TextRendererPrivate::updateAlignedTextTopLeft()
{
    const QSizeF size = staticText.size();
    const Qt::Alignment alignment = staticText.textOption().alignment();

    if (availableHeight < 1) {
        alignedTextTopLeft.setY(textTopLeft.y());
    } else if (alignment & Qt::AlignVCenter) {
        const int offset = toInt(std::ceil((availableHeight - size.height()) * 0.5));
        alignedTextTopLeft.setY(toInt(double(textTopLeft.y()) + offset));
    } else if (size.height() < availableHeight && alignment & Qt::AlignBottom) {
        alignedTextTopLeft.setY(
            toInt(double(availableHeight) + textTopLeft.y() - toInt(std::ceil(size.height()))));
    }

    // An elided text that stays at the left is aligned without its width. Measuring the whole text may take long.
    if (textElided && !(alignment & (Qt::AlignHCenter | Qt::AlignRight)))
        return;
    const int width = effectiveTextWidth();
    if (textWidth < 1 || textWidth < width)
        return;
    if (alignment & Qt::AlignHCenter) {
        const int offset = toInt(std::ceil((double(textWidth) - width) * 0.5));
        alignedTextTopLeft.setX(toInt(double(textTopLeft.x()) + offset));
    } else if (alignment & Qt::AlignRight) {
        alignedTextTopLeft.setX(toInt(double(textWidth) - width + textTopLeft.x()));
    }
}

// An empty text has the height that the static text last had, truncated, and no margins: callers depend
// on these numbers.
QSize TextRendererPrivate::computeBoundingSize(const QMargins &margins) const
{
    const QSizeF size = staticText.size();
    if (text.isEmpty())
        return {0, toInt(size.height())};
    return {toInt(double(margins.left()) + margins.right() + toInt(std::ceil(size.width()))),
            toInt(double(margins.top()) + margins.bottom() + toInt(std::ceil(size.height())))};
}

/*!
    \class ovelin::TextRenderer
    \inmodule Ovelin
    \inheaderfile ovelin/textrenderer.h
    \brief A piece of text that is laid out once in a box and then painted cheaply again and again.

    A renderer holds the text with its font, width, line limit, alignment and position. Setters record
    the new value and mark the layout as out of date; relayout() breaks the text into lines, hyphenates
    Russian words, and cuts what exceeds the line limit with an ellipsis; draw() paints the result with
    one call. The text needs a font with a size in pixels: with a size in points, or without a
    text, nothing is laid out or painted.

    \snippet tst_snippets.cpp text

    The guide \l {How a text is laid out} explains lines, hyphens and geometry with pictures.

    All geometry is in device pixels. Arithmetic with positions saturates at the range of int.

    \section1 The width

    The width limit of the lines is textWidth() if that is at least 1, else maxTextWidth() if that is at
    least 1. A line exactly as wide as the limit does not fit. Without a limit the lines are as wide as
    the whole text needs on one line.

    \section1 The lines

    A line can end at a space, at a line separator (U+2028), and before a hyphen that no digit follows;
    the hyphen then begins the next line. With a maxLineCount() of 2 or more the newlines in the text
    become line separators, and stay so.

    With hyphenationEnabled(), a word that does not fit at the end of a line is hyphenated by rules made
    for Russian. If no prefix up to a hyphenation point fits, the word moves as a whole. A word
    without hyphenation points is split without a hyphen if it has nine characters or more, its
    separator counted, or if it fits on no line. At least five characters, the separator counted, then
    go to the next line.

    On the last line allowed the text is cut with an ellipsis, and spaces and punctuation before the
    ellipsis are dropped. No line begins inside a surrogate pair. With a line limit of 0 or less nothing
    is split or elided.

    Every layout terminates. A word that fits on no line and cannot be split cuts the text, however large
    the line limit is. Without a line limit the word stands on its line as if it fitted.

    A renderer is a value: it can be copied, and copies are independent. It cannot be assigned. Use it
    in the GUI thread.

    \since Ovelin 1.0
*/

/*!
    Creates a renderer for a single line, without a text: hyphenation enabled, aligned left, no width,
    the format Qt::AutoText.
*/
TextRenderer::TextRenderer()
    : d(std::make_unique<TextRendererPrivate>(this))
{
}

/*!
    Creates a copy of \a other with its layout. Whether the text was elided is not copied:
    isTextElided() returns false until the copy is laid out itself.
*/
TextRenderer::TextRenderer(const TextRenderer &other)
    : TextRenderer()
{
    d->needRelayout = other.d->needRelayout;
    d->staticText = other.d->staticText;
    d->text = other.d->text;
    d->textIsWellFormed = other.d->textIsWellFormed;
    d->font = other.d->font;
    d->textTopLeft = other.d->textTopLeft;
    d->alignedTextTopLeft = other.d->alignedTextTopLeft;
    d->maxLineCount = other.d->maxLineCount;
    d->hyphenationEnabled = other.d->hyphenationEnabled;
    d->availableHeight = other.d->availableHeight;
    d->textWidth = other.d->textWidth;
    d->maxTextWidth = other.d->maxTextWidth;
}

/*!
    Destroys the renderer.
*/
TextRenderer::~TextRenderer() = default;

/*!
    Returns the text as it was set, with line separators (U+2028) where newlines were replaced.
*/
QString TextRenderer::text() const
{
    return d->text;
}

/*!
    Sets the text to \a text; does nothing when it is the same. With a maxLineCount() of 2 or more each
    newline becomes a line separator, before the texts are compared.
*/
void TextRenderer::setText(const QString &text)
{
    const bool separated = d->maxLineCount >= fewestLinesToBreak;
    const QString newText = separated ? withLineSeparators(text) : text;
    if (newText == d->text)
        return;
    d->text = newText;
    d->textIsWellFormed = newText.isValidUtf16();
    d->lineSeparatorsApplied = separated;
    d->markDirty();
}

/*!
    Returns the font of the text; initially the application's.
*/
QFont TextRenderer::textFont() const
{
    return d->font;
}

/*!
    Sets the font to \a font, which needs a size in pixels; does nothing when it is the same. With a
    size in points the renderer is not valid.
*/
void TextRenderer::setTextFont(const QFont &font)
{
    if (font == d->font)
        return;
    d->font = font;
    d->markDirty();
}

/*!
    Returns the format of the text, initially Qt::AutoText.
*/
Qt::TextFormat TextRenderer::textFormat() const
{
    return d->staticText.textFormat();
}

/*!
    Sets the format of the text to \a format; does nothing when it is the same. Changes at once what is
    painted and measured, before the next relayout().

    Qt itself wraps a text of the format Qt::RichText at the width limit. Rich text is neither elided nor
    hyphenated, and isTextElided() keeps the result of the last layout of another format.

    A text of any other format is broken into lines like plain text: its markup counts as characters.
    Qt then reads the broken text in \a format. Set Qt::PlainText for texts from elsewhere.
*/
void TextRenderer::setTextFormat(Qt::TextFormat format)
{
    if (format == d->staticText.textFormat())
        return;
    d->staticText.setTextFormat(format);
    d->markDirty();
}

/*!
    Returns the alignment of the text in its box, initially Qt::AlignLeft.
*/
Qt::Alignment TextRenderer::textAlignment() const
{
    return d->staticText.textOption().alignment();
}

/*!
    Sets the alignment of the text in its box to \a alignment; does nothing when it is the same. Changes
    at once how the lines are painted, and what is measured; the next relayout() moves the text as a whole.

    Qt::AlignHCenter and Qt::AlignRight align each line inside the width of the text, and move the text
    as a whole inside textWidth(). Qt::AlignVCenter and Qt::AlignBottom move the text inside the
    available height. Other flags leave the text where it is, even if an earlier alignment moved it. To
    undo an earlier alignment, call setTextTopLeft() with another position.

    Without a textWidth() the text does not move horizontally, not even with a maxTextWidth(). A wrapped
    text counts as wide as the box, so it does not move horizontally either. Qt::AlignBottom moves only
    a text that is less high than the box. If flags contradict each other, the text as a whole is centred,
    and Qt decides how each line is aligned.
*/
void TextRenderer::setTextAlignment(Qt::Alignment alignment)
{
    QTextOption option = d->staticText.textOption();
    if (alignment == option.alignment())
        return;
    option.setAlignment(alignment);
    d->staticText.setTextOption(option);
    d->markDirty();
}

/*!
    Returns the fixed width of the box in device pixels; 0 or less: not set.
*/
int TextRenderer::textWidth() const
{
    return d->textWidth;
}

/*!
    Sets the fixed width of the box to \a width device pixels; 0 or less means that no width is set.

    A layout that is up to date and not elided is kept when \a width is 0, and when the whole text,
    measured by fineTextWidth(), fits both the old and the new width: only the alignment is computed
    anew then. In every other case the renderer needs a relayout(), also when the width does not
    change. A copy that was not laid out itself needs a relayout() after every call, even with 0.

    \sa maxTextWidth(), isNeedRelayout()
*/
void TextRenderer::setTextWidth(int width)
{
    const auto fitsWhole = [this](int boxWidth) { return boxWidth >= *d->fineWidth; };
    const bool keepsLayout = !d->needRelayout && d->fineWidth && !d->textElided
                             && (width == 0 || (fitsWhole(d->textWidth) && fitsWhole(width)));

    d->textWidth = width;
    if (keepsLayout)
        d->updateAlignedTextTopLeft();
    else
        d->markDirty();
}

/*!
    Returns the maximal width in device pixels, which counts while textWidth() is not set; 0 or less:
    not set.
*/
int TextRenderer::maxTextWidth() const
{
    return d->maxTextWidth;
}

/*!
    Sets the maximal width to \a width device pixels; does nothing when it is the same. 0 or less means
    that no maximal width is set. Changes at once what is painted and measured, before the next
    relayout().
*/
void TextRenderer::setMaxTextWidth(int width)
{
    if (width == d->maxTextWidth)
        return;
    d->maxTextWidth = width;
    d->staticText.setTextWidth(width);
    d->markDirty();
}

/*!
    Sets the height of the box, for vertical alignment only, to \a height device pixels; does nothing
    when it is the same. 0 or less means that no height is set. A text that is centred and higher than
    the box begins above the box.
*/
void TextRenderer::setAvailableHeight(int height)
{
    if (height == d->availableHeight)
        return;
    d->availableHeight = height;
    d->markDirty();
}

/*!
    Returns the maximal number of lines, initially 1.
*/
int TextRenderer::maxLineCount() const
{
    return d->maxLineCount;
}

/*!
    Sets the maximal number of lines to \a count; does nothing when it is the same. A text that needs
    more lines is cut on the last one.

    With 0 or less there is no limit, and no word is hyphenated or split. INT_MAX gives as many lines
    as the text needs, with hyphenation; but the text is cut at a word that fits on no line and cannot be
    split.

    From 2 on the newlines in the text become line separators, and a lower limit set later does not
    turn them back. A paragraph whose last word moves to the next line is counted as one line more than
    it shows. A text with newlines can therefore be cut early; it can also show more lines than \a count.
*/
void TextRenderer::setMaxLineCount(int count)
{
    if (count == d->maxLineCount)
        return;
    d->maxLineCount = count;
    d->markDirty();
}

/*!
    Returns true if words are hyphenated; initially true.
*/
bool TextRenderer::hyphenationEnabled() const
{
    return d->hyphenationEnabled;
}

/*!
    Sets whether words are hyphenated at the end of a line to \a enabled; does nothing when it is the
    same. A word that begins its line and does not fit there is hyphenated or split also if \a enabled
    is false.
*/
void TextRenderer::setHyphenationEnabled(bool enabled)
{
    if (enabled == d->hyphenationEnabled)
        return;
    d->hyphenationEnabled = enabled;
    d->markDirty();
}

/*!
    Returns the position of the box.
*/
QPoint TextRenderer::textTopLeft() const
{
    return d->textTopLeft;
}

/*!
    Sets the position of the box to \a topLeft, and the text to the same position until the next
    relayout() aligns it anew; does nothing when the position is the same. To scroll, call move().

    \sa move()
*/
void TextRenderer::setTextTopLeft(const QPoint &topLeft)
{
    if (topLeft == d->textTopLeft)
        return;
    d->textTopLeft = topLeft;
    d->alignedTextTopLeft = topLeft;
    d->markDirty();
}

/*!
    Returns where the text is painted: its top left corner after alignment.
*/
QPoint TextRenderer::alignedTextTopLeft() const
{
    return d->alignedTextTopLeft;
}

/*!
    Returns true if there is a text, and a font with a size in pixels.
*/
bool TextRenderer::isValid() const
{
    return d->canBeLaidOut();
}

/*!
    Returns true if the layout is out of date; false for a new renderer.
*/
bool TextRenderer::isNeedRelayout() const
{
    return d->needRelayout;
}

/*!
    Returns true if the last layout that broke lines cut the text with an ellipsis. A layout without a
    width, or of rich text, breaks no lines and does not change the result.
*/
bool TextRenderer::isTextElided() const
{
    return d->textElided;
}

/*!
    Returns the text as the last layout shows it, with hyphens and ellipsis, and with newlines between
    its lines where the text itself or the layout broke it. There is no newline where a line ends at a
    space: Qt breaks the line there. In a text that the layout broke into lines, half of a surrogate
    pair that stands alone is a replacement character (U+FFFD). Empty before the first layout.
*/
QString TextRenderer::displayText() const
{
    return d->staticText.text().replace(lineSeparator, newline);
}

/*!
    Returns the paragraphs of text(): the parts between its line separators, empty ones included. These
    are not the lines of the layout.
*/
QStringList TextRenderer::textLines() const
{
    return d->text.split(lineSeparator);
}

/*!
    Moves the box to \a topLeft, and the text with it, without a new layout.

    \sa setTextTopLeft()
*/
void TextRenderer::move(const QPoint &topLeft)
{
    const auto moved = [](int aligned, int from, int to) {
        return toInt(double(aligned) + to - from);
    };
    const QPoint aligned = d->alignedTextTopLeft;
    d->alignedTextTopLeft = {moved(aligned.x(), d->textTopLeft.x(), topLeft.x()),
                             moved(aligned.y(), d->textTopLeft.y(), topLeft.y())};
    d->textTopLeft = topLeft;
}

/*!
    Lays the text out if isNeedRelayout() is true. If the renderer is not valid, this does nothing, and
    isNeedRelayout() stays true.
*/
void TextRenderer::relayout()
{
    d->performLayout();
}

/*!
    Lays the text out, if that is needed, and returns its size with \a margins around it.
*/
QSize TextRenderer::boundingSize(const QMargins &margins)
{
    relayout();
    return d->computeBoundingSize(margins);
}

/*!
    Returns the size of the text as it was last laid out, rounded up, with \a margins around it. For an
    empty text the width is 0, the height is that of the last layout, truncated, and no margins are added.
*/
QSize TextRenderer::boundingSize(const QMargins &margins) const
{
    return d->computeBoundingSize(margins);
}

/*!
    Returns the rectangle of the text as it was last laid out, at its aligned position; at
    textTopLeft() if that position is (0, 0).
*/
QRect TextRenderer::boundingRect() const
{
    const QPoint origin = d->alignedTextTopLeft.isNull() ? d->textTopLeft : d->alignedTextTopLeft;
    return boundedRect(origin, d->computeBoundingSize({}));
}

/*!
    Returns the rectangle of the box: textWidth() wide at textTopLeft(). Its height is that of the text
    as it was last laid out, rounded to the nearest pixel. Without a textWidth() this is boundingRect().
*/
QRect TextRenderer::geometry() const
{
    if (d->textWidth < 1)
        return boundingRect();
    return boundedRect(d->textTopLeft, {d->textWidth, qRound(d->staticText.size().height())});
}

/*!
    Paints the text as it was last laid out, at alignedTextTopLeft(), with \a painter in its present pen.
    Paints nothing when the renderer is not valid.

    The painter keeps the font of the text. If the font strikes out, draw() also draws a line through
    the middle of the text, and the painter keeps the pen of this line. Qt then prints a warning at each
    call: the pen is given the font's size in points, which is -1, and keeps its width.
*/
void TextRenderer::draw(QPainter &painter) const
{
    if (!d->canBeLaidOut())
        return;

    const QPoint topLeft = d->alignedTextTopLeft;
    painter.setFont(d->font);
    painter.drawStaticText(QPointF(topLeft), d->staticText);

    if (!d->font.strikeOut())
        return;
    QPen pen = painter.pen();
    // A font sized in pixels has no size in points: QPen refuses the -1, and the width stays.
    pen.setWidth(d->font.pointSize());
    painter.setPen(pen);

    const QSizeF size = d->staticText.size();
    const int y = toInt(double(topLeft.y()) + toInt(size.height() * 0.5));
    const int right = toInt(double(topLeft.x()) + toInt(std::ceil(size.width())));
    const QLine strike(topLeft.x(), y, right, y);
    painter.drawLines(&strike, 1);
}

/*!
    \relates ovelin::TextRenderer

    Paints the text of \a renderer with \a painter and \a pen so that its top left corner, as aligned,
    lies on the painter's origin.

    The painter is neither saved nor restored: it keeps \a pen, the brush Qt::NoBrush, the font and the
    translation.

    \since Ovelin 1.0
*/
void drawTextRenderer(QPainter &painter, const TextRenderer &renderer, const QPen &pen)
{
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.translate(-QPointF(renderer.alignedTextTopLeft()));
    renderer.draw(painter);
}

} // namespace ovelin
