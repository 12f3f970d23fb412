#ifndef OVELIN_BENCHMARKS_TABLE_H
#define OVELIN_BENCHMARKS_TABLE_H

#include "support/gridtable.h"

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>
#include <vector>

namespace ovelin::benchmarks {

// Prints the comparisons as lines of a Markdown table, each as soon as it is finished; then the tables of the
// grid.
class Table : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;
    void Finalize() override;

private:
    void printRow(const std::string &operation, double seconds, const std::string &against,
                  double ratio);
    void printGridSummary();
    void printVerdict(std::string_view operation, std::string_view against, double ratio);

    GridTable m_grid;
    bool m_hasRows = false;
    int m_targets = 0;
    int m_targetsMet = 0;
};

} // namespace ovelin::benchmarks

#endif
