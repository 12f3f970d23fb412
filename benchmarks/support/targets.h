#ifndef OVELIN_BENCHMARKS_TARGETS_H
#define OVELIN_BENCHMARKS_TARGETS_H

#include <optional>
#include <string_view>

namespace ovelin::benchmarks {

// The work of the targets for what sums up the grid.
inline constexpr auto gridName = "grid";

// How many times as long as another contender a work may take, or the most that a number of the grid's
// may be.
struct Target
{
    std::string_view work;
    std::string_view against;
    double ratio;
    std::optional<double> beyond = {}; // what would be better still
};

// The target of a line of the table, or null when it has none.
const Target *findTarget(std::string_view work, std::string_view against);

} // namespace ovelin::benchmarks

#endif
