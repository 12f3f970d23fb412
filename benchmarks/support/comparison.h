#ifndef OVELIN_BENCHMARKS_COMPARISON_H
#define OVELIN_BENCHMARKS_COMPARISON_H

#include <functional>
#include <string>
#include <vector>

namespace ovelin::benchmarks {

// What a work of the library is compared with.
struct Contender
{
    std::string name;
    std::function<void()> run;
};

struct Comparison
{
    std::function<void()> work;
    std::vector<Contender> contenders = {};
    std::function<void()> undoWork = {}; // untimed, for a work that cannot be done twice
};

// Registers a comparison with Google Benchmark. It is made when its turn comes, and anew for each
// of its repetitions. In each of its rounds the work and all contenders run right after one
// another, so that whatever slows the machine down slows all of them: the ratios within a round are
// what is compared.
void compare(const std::string &name, std::function<Comparison()> makeComparison);

// The same for one of many comparisons: it is not repeated, and it takes few rounds if these are long.
void compareOnce(const std::string &name, std::function<Comparison()> makeComparison);

// Registers an action of which is told how often it has a text shaped.
void countShaping(const std::string &name, std::function<std::function<void()>()> makeAction);

// The counters of a benchmark: the seconds that the work takes, and how often it has a text shaped.
// All others have the names of contenders and tell how many times as long as theirs the work takes.
inline constexpr auto workCounter = "work";
inline constexpr auto shaperCallsCounter = "calls of the text shaper";

double median(std::vector<double> values);

} // namespace ovelin::benchmarks

#endif
