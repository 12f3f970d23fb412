#ifndef OVELIN_TESTS_TEXT_REFERENCELAYOUT_H
#define OVELIN_TESTS_TEXT_REFERENCELAYOUT_H

#include <QFont>
#include <QSizeF>
#include <QString>

namespace ovelin::tests {

struct ReferenceInput
{
    QString text; // its newlines are replaced where more than one line is allowed
    QFont font;
    int maxLineCount = 1;
    int textWidth = 0;
    int maxTextWidth = 0;
    bool hyphenationEnabled = true;
    Qt::TextFormat format = Qt::AutoText;
};

struct ReferenceLayout
{
    bool ended = false; // false: the steps were not done within the budget, nothing else is set
    bool elided = false;
    QString displayText; // with "\n" for the separators
    QSizeF size;         // of the static text
    int wholeWidth = 0;  // the fine width of the text on one line
    int rounds = 0;      // how many break candidates were looked at
};

// The line breaking in its plainest form: one step after the other, every line measured anew at
// every candidate, and the lines of an endless round counted one by one up to the limit. The
// library has to show the same text; this one may take for ages, so it gives up after so many break
// candidates.
ReferenceLayout referenceLayout(const ReferenceInput &input, int roundBudget);

// The same where the limit is too high to be counted up to. A round counts one or a few lines, so that
// a lower limit which leaves the same rest by every number of up to six ends in the same place. For
// texts that need fewer lines than these.
constexpr int restPeriod = 60;
constexpr int mostCountableLines = 40 * restPeriod;
ReferenceLayout countableReferenceLayout(ReferenceInput input, int roundBudget);

} // namespace ovelin::tests

#endif
