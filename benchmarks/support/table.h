#ifndef OVELIN_BENCHMARKS_TABLE_H
#define OVELIN_BENCHMARKS_TABLE_H

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace ovelin::benchmarks {

// Prints a Markdown table of the comparisons, a line as soon as it is known.
class Table : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;
    void Finalize() override;

private:
    void printRow(const std::string &work, double seconds, const std::string &against,
                  double ratio);

    int m_targets = 0;
    int m_targetsMet = 0;
};

} // namespace ovelin::benchmarks

#endif
