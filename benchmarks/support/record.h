#ifndef OVELIN_BENCHMARKS_RECORD_H
#define OVELIN_BENCHMARKS_RECORD_H

#include <benchmark/benchmark.h>

#include <vector>

namespace ovelin::benchmarks {

// Writes the times of texts into a file of comma-separated values, which the plots of the
// documentation are drawn from. A row is written for each comparison that has recordedAs.
class Record : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;
};

} // namespace ovelin::benchmarks

#endif
