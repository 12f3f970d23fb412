#ifndef OVELIN_BENCHMARKS_TABLE_H
#define OVELIN_BENCHMARKS_TABLE_H

#include <benchmark/benchmark.h>

namespace ovelin::benchmarks {

// Prints a Markdown table of the comparisons, a line as soon as it is known.
class Table : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;
};

} // namespace ovelin::benchmarks

#endif
