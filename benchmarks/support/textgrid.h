#ifndef OVELIN_BENCHMARKS_TEXTGRID_H
#define OVELIN_BENCHMARKS_TEXTGRID_H

#include "support/renderers.h"

#include <limits>
#include <string>
#include <vector>

namespace ovelin::benchmarks {

// The grid: texts of each kind in each box, of several lengths.

struct TextKind
{
    const char *name;
    Script script;
    bool endless = false;
    double letterSpacing = 0;
};

inline constexpr TextKind gridKinds[] = {
    {"Russian", Script::Russian},
    {"English", Script::Latin},
    {"Hebrew", Script::Hebrew},
    {"Arabic", Script::Arabic},
    {"Chinese", Script::Chinese},
    {"mixed", Script::Mixed},
    {"Russian spaced by -0.5 px", Script::Russian, false, -0.5},
    {"endless Russian word", Script::Russian, true},
    {"endless Hebrew word", Script::Hebrew, true},
};

struct TextBox
{
    const char *name;
    int width;
    int maxLineCount;
    bool cuts = false; // true: long texts do not fit, short ones may
};

inline constexpr int allLines = std::numeric_limits<int>::max();

inline constexpr TextBox gridBoxes[] = {
    {"4 lines of 400 px", boxWidth, 4, true},
    {"all lines of 400 px", boxWidth, allLines},
    {"all lines of 1900 px", screenWidth, allLines},
    {"one line as wide as the text", justWideEnough, 1},
    {"one line of 1900 px", screenWidth, 1, true},
};

inline constexpr int shortText = 200;
inline constexpr int longText = 2000;

// Returns the numbers of words of the texts in a box. A box that cuts its text also has a very long one: the part
// that is cut away should cost nothing.
std::vector<int> gridLengths(const TextBox &box);

struct GridCell
{
    const TextBox *box;
    const TextKind *kind;
    int wordCount;

    std::string name() const; // of its benchmark
    std::string recordKey() const;
    TextCase textCase() const;

    bool operator==(const GridCell &) const = default;
};

// The name of a contender: the layout of a shorter text. Long texts that the box cuts are compared with it.
inline constexpr auto growthName = "the same with 200 words";

std::vector<GridCell> gridCells();

} // namespace ovelin::benchmarks

#endif
