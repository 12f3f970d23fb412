#include "support/textgrid.h"

namespace ovelin::benchmarks {

std::vector<int> gridLengths(const TextBox &box)
{
    constexpr int shortestText = 20;
    constexpr int longestText = 20000;
    std::vector<int> lengths = {shortestText, shortText, longText};
    if (box.cuts)
        lengths.push_back(longestText);
    return lengths;
}

std::vector<GridCell> gridCells()
{
    std::vector<GridCell> cells;
    for (const TextBox &box : gridBoxes) {
        for (const TextKind &kind : gridKinds) {
            for (const int wordCount : gridLengths(box))
                cells.push_back({&box, &kind, wordCount});
        }
    }
    return cells;
}

std::string GridCell::name() const
{
    return std::string("grid: ") + box->name + ": " + kind->name + ", " + std::to_string(wordCount)
           + " words";
}

std::string GridCell::recordKey() const
{
    return std::string(kind->name) + "," + box->name + "," + std::to_string(wordCount);
}

TextCase GridCell::textCase() const
{
    return {.script = kind->script,
            .wordCount = wordCount,
            .maxLineCount = box->maxLineCount,
            .width = box->width,
            .endless = kind->endless,
            .letterSpacing = kind->letterSpacing};
}

} // namespace ovelin::benchmarks
