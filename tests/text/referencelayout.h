#ifndef OVELIN_TESTS_TEXT_REFERENCELAYOUT_H
#define OVELIN_TESTS_TEXT_REFERENCELAYOUT_H

#include <QFont>
#include <QSizeF>
#include <QString>

namespace ovelin::tests {

struct ReferenceInput
{
    QString text; // with newlines, not with the line separators that replace them
    QFont font;
    int maxLineCount = 1;
    int textWidth = 0;
    int maxTextWidth = 0;
    bool hyphenationEnabled = true;
    Qt::TextFormat format = Qt::AutoText;
    Qt::Alignment alignment = Qt::AlignLeft;
};

struct ReferenceLayout
{
    bool ended = false; // false: the budget of candidates was used up, and no layout is set
    bool elided = false;
    QString displayText; // with "\n" instead of line separators
    QSizeF size;         // of the static text
    int wholeWidth = 0;  // the fine width of the text on one line
    int candidates = 0;  // the number of break candidates that were tried
};

// The reference layout: line breaking in its simplest form. It measures the whole line at every break
// candidate. If a word fits on no line, it wraps the word again and again up to the line limit. The library
// must show the same text. Since this layout can take very long, it gives up after `candidateBudget` break
// candidates.
ReferenceLayout referenceLayout(const ReferenceInput &input, int candidateBudget);

// Returns the reference layout also for line limits that are too high to be counted up to. Each time a word
// that fits on no line wraps, the line count grows by one to six. 60 is a multiple of each of these numbers, so
// two limits with the same remainder modulo 60 end the layout at the same position. The function therefore uses
// a lower limit with the same remainder. The text must need fewer lines than `mostCountedLines`.
constexpr int remainderPeriod = 60;
constexpr int mostCountedLines = 40 * remainderPeriod;
ReferenceLayout referenceLayoutAtAnyLimit(ReferenceInput input, int candidateBudget);

} // namespace ovelin::tests

#endif
