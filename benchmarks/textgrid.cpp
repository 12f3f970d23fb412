#include "subsystems.h"

#include "contenders/textcontenders.h"
#include "support/comparison.h"
#include "support/renderers.h"
#include "support/textgrid.h"

namespace ovelin::benchmarks {

namespace {

Comparison compareCell(GridCell cell)
{
    const auto renderer = makeRenderer(cell.textCase());
    Comparison comparison{.operation = relayoutOf(renderer), .recordedAs = cell.recordKey()};
    // The short text is the first contender: in each round it runs right before or right after the long text.
    if (cell.box->cuts && cell.wordCount == longText) {
        cell.wordCount = shortText;
        comparison.contenders.push_back({growthName, relayoutOf(makeRenderer(cell.textCase()))});
    }
    for (const Contender &contender : textContenders(*renderer))
        comparison.contenders.push_back(contender);
    return comparison;
}

} // namespace

void registerTextGrid()
{
    for (const GridCell &cell : gridCells())
        compareOnce(cell.name(), [cell] { return compareCell(cell); });
}

} // namespace ovelin::benchmarks
