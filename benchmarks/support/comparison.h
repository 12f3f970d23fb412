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
    std::vector<Contender> contenders;
};

// Registers a comparison with Google Benchmark. It is made when its turn comes, and anew for each of its
// repetitions. In each of its rounds the work and all contenders run right after one another, so that
// whatever slows the machine down slows all of them: the ratios within a round are what is compared.
void compare(const std::string &name, std::function<Comparison()> makeComparison);

// The counter of a benchmark that has the seconds that the work takes; the other counters have the
// names of contenders and tell how many times as long as theirs that is.
inline const std::string workCounter = "work";

} // namespace ovelin::benchmarks

#endif
