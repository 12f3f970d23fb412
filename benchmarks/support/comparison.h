#ifndef OVELIN_BENCHMARKS_COMPARISON_H
#define OVELIN_BENCHMARKS_COMPARISON_H

#include <functional>
#include <string>
#include <vector>

namespace ovelin::benchmarks {

// Another way to get the result of an operation of the library, to compare the times.
struct Contender
{
    std::string name;
    std::function<void()> run;
};

struct Comparison
{
    std::function<void()> operation;
    std::vector<Contender> contenders = {};
    std::function<void()> undo = {}; // not timed; for an operation that cannot be done twice
    std::string recordedAs = {};     // text, box and words of its row in speed.csv; empty: no row
};

// Registers a comparison with Google Benchmark. `makeComparison` is called at the beginning of each repetition. In
// each round the operation and all contenders run right after one another, so that other load on the machine slows
// all of them. Each ratio is the quotient of two times that were measured in the same round.
void compare(const std::string &name, std::function<Comparison()> makeComparison);

// Registers a comparison that runs only once, whatever --benchmark_repetitions says.
void compareOnce(const std::string &name, std::function<Comparison()> makeComparison);

// Registers an action whose calls of the text shaper are counted.
void countShaping(const std::string &name, std::function<std::function<void()>()> makeAction);

// The names of a benchmark's counters: the seconds of the operation, and its calls of the text shaper. Each other
// counter has the name of a contender; it is the time of the operation divided by that of the contender.
inline constexpr auto operationCounter = "operation";
inline constexpr auto shaperCallsCounter = "calls of the text shaper";

double median(std::vector<double> values);

} // namespace ovelin::benchmarks

#endif
