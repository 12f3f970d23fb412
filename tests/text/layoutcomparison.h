#ifndef OVELIN_TESTS_TEXT_LAYOUTCOMPARISON_H
#define OVELIN_TESTS_TEXT_LAYOUTCOMPARISON_H

#include "referencelayout.h"

#include <QByteArray>
#include <QString>

namespace ovelin {
class TextRenderer;
}

namespace ovelin::tests {

// The plain formulation looks at no more candidates than these in one layout.
constexpr int roundBudget = 20 * (mostCountableLines + restPeriod);

// How many of the layouts compared are of each sort.
struct LayoutCounts
{
    int compared = 0;
    int elided = 0;
    int hyphenated = 0; // a word of it is split with a hyphen
    int broken = 0;     // a line of it ends where no newline is
    int counted = 0;    // the plain formulation counts its lines up to the limit

    QByteArray description() const;
};

// All that a row of a test would tell.
QString described(const ReferenceInput &input);

// Sets a renderer up as the input tells, and lays its text out.
void apply(TextRenderer &renderer, const ReferenceInput &input);

// The current test fails, and tells the input, unless the library shows the same as the plain formulation:
// the same text, elided or not, of the same size.
void compareLayout(const ReferenceInput &input, LayoutCounts *counts = nullptr);

// The same, and the width of the whole text as well, by what depends on it: where the text is aligned, and
// which widths keep the layout. It takes six times as long.
void compare(const ReferenceInput &input, LayoutCounts *counts = nullptr);

} // namespace ovelin::tests

#endif
