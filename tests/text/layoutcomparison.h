#ifndef OVELIN_TESTS_TEXT_LAYOUTCOMPARISON_H
#define OVELIN_TESTS_TEXT_LAYOUTCOMPARISON_H

#include "referencelayout.h"

#include <QByteArray>
#include <QString>

namespace ovelin {
class TextRenderer;
}

namespace ovelin::tests {

// The reference layout gives up after this many break candidates: 20 on each line that it may count.
constexpr int candidateBudget = 20 * (mostCountedLines + remainderPeriod);

// How many of the compared layouts have each property.
struct LayoutCounts
{
    int compared = 0;
    int elided = 0;
    int hyphenated = 0; // a word is split with a hyphen
    int broken = 0;     // the layout inserts a line break
    int repeated = 0;   // a word that fits on no line wraps again and again, up to the line limit

    QByteArray description() const;
};

// Returns all values of the input in words, for the message of a failure.
QString described(const ReferenceInput &input);

// Sets the values of the input in a renderer and lays its text out.
void apply(TextRenderer &renderer, const ReferenceInput &input);

// Fails the current test, with the input in its message, unless the library shows the text of the reference layout in
// the same size, and elides it if the reference layout does.
void compareLayout(const ReferenceInput &input, LayoutCounts *counts = nullptr);

// Does what compareLayout() does. Also compares two effects of the width of the whole text: the position of
// aligned text, and which box widths keep the layout. This takes six times as long as compareLayout().
void compare(const ReferenceInput &input, LayoutCounts *counts = nullptr);

} // namespace ovelin::tests

#endif
