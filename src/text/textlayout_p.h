#ifndef OVELIN_TEXTLAYOUT_P_H
#define OVELIN_TEXTLAYOUT_P_H

#include <QtCore/qstring.h>

#include <optional>

QT_BEGIN_NAMESPACE
class QFont;
QT_END_NAMESPACE

// The terms of the text module:
//
// advance        The distance in pixels from the beginning of a text to where the next glyph would stand.
// fine width     The advance in whole pixels, rounded up, with two pixels of margin.
// width limit    The width in pixels that a line must stay below.
// line limit     The number of lines that a text may have.
// separator      A space, a line separator (U+2028), or a hyphen that no digit follows: a word ends with it.
// candidate      A separator at which the line may end, with the word before it.
// overflow       A line overflows if its advance, without its separator, is not below the width limit.
// wrap           To move a word that overflows to the next line.
// split          To break a word, at a hyphenation point or, forced, between any two characters.
// elide          To cut the text on its last line with an ellipsis.
// shaped run     A part of the text for which Qt has chosen and placed the glyphs.
// tolerance      How far an advance that was read from a shaped run may be off.

namespace ovelin {

struct LineLimits
{
    double width;     // the width limit
    int maxLineCount; // the line limit; 0 and below: none
    bool hyphenationEnabled;
};

struct BrokenText
{
    QString text;
    bool elided;
    // The fine width of the whole text. If the text is wider than the width limit, this can be a smaller width
    // that is still greater than the limit. Empty if the layout found no width.
    std::optional<int> fineWidth;
};

// Breaks a text into lines. Inserts a line separator where a line ends but Qt, given the width limit, would not
// break the text by itself. Inserts a hyphen before this separator if the word is split at a hyphenation point. Adds
// an ellipsis at the end if the line limit cuts the text. The text must be well-formed UTF-16.
BrokenText breakIntoLines(const QString &text, const QFont &font, const LineLimits &limits);

} // namespace ovelin

#endif
