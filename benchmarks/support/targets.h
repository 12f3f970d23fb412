#ifndef OVELIN_BENCHMARKS_TARGETS_H
#define OVELIN_BENCHMARKS_TARGETS_H

#include <optional>
#include <string_view>

namespace ovelin::benchmarks {

// In place of an operation: the target is for a number of the whole grid.
inline constexpr auto gridName = "grid";

// The highest accepted ratio of an operation to a contender, or the highest accepted number of the grid.
struct Target
{
    std::string_view operation;
    std::string_view against;
    double ratio;
    std::optional<double> beyond = {}; // a lower ratio that is desired
};

// Returns the target of a line of the table, or null.
const Target *findTarget(std::string_view operation, std::string_view against);

} // namespace ovelin::benchmarks

#endif
