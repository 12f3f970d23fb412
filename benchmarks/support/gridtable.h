#ifndef OVELIN_BENCHMARKS_GRIDTABLE_H
#define OVELIN_BENCHMARKS_GRIDTABLE_H

#include "support/textgrid.h"

#include <benchmark/benchmark.h>

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace ovelin::benchmarks {

// Collects the ratios of the grid's cells, and prints a Markdown table for each box.
class GridTable
{
public:
    // Adds the results of a cell. Returns false if no cell of the grid has that name. Prints the table of the
    // previous box when the first cell of another box arrives.
    bool add(const std::string &cellName, const benchmark::UserCounters &counters,
             std::ostream &out);

    void printLastBox(std::ostream &out) const;

    // Returns the worst ratios, the median and the counts, each with its name. Only the cells of at most
    // 2,000 words count. A ratio that no cell has measured is left out.
    std::vector<std::pair<std::string, double>> summary() const;

private:
    // The time of the layout divided by the time of each contender; NaN if the contender was not measured.
    struct Result
    {
        GridCell cell;
        double floor;
        double loop;
        double pango;
        double document;
        double growth;
    };

    void printRow(const TextKind &kind, std::ostream &out) const;

    const TextBox *m_box = nullptr;
    std::vector<Result> m_results;
};

} // namespace ovelin::benchmarks

#endif
