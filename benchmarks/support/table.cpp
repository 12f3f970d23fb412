#include "support/table.h"

#include "support/comparison.h"
#include "support/machine.h"
#include "support/targets.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>
#include <string>
#include <string_view>

namespace ovelin::benchmarks {

namespace {

using Run = benchmark::BenchmarkReporter::Run;

std::string timeText(double seconds)
{
    struct Unit
    {
        double seconds;
        std::string_view name;
    };
    constexpr Unit units[] = {{1e-3, " ms"}, {1e-6, " µs"}, {1e-9, " ns"}};
    const auto *unit = std::find_if(std::begin(units), std::end(units) - 1,
                                    [&](const Unit &u) { return seconds >= u.seconds; });
    std::ostringstream text;
    text << std::setprecision(3) << seconds / unit->seconds << unit->name;
    return text.str();
}

std::string numberText(double number)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(number == std::floor(number) ? 0 : 2) << number;
    return text.str();
}

std::string targetText(const Target &target)
{
    const std::string text = "≤ " + numberText(target.ratio);
    return target.beyond ? text + ", beyond: " + numberText(*target.beyond) : text;
}

std::string verdict(const Target &target, double ratio)
{
    if (target.beyond && ratio <= *target.beyond)
        return "met, and beyond";
    return ratio <= target.ratio ? "met" : "**missed**";
}

} // namespace

bool Table::ReportContext(const Context &context)
{
    GetOutputStream() << "Measured on " << machineText(context) << ".\n\n";
    return true;
}

void Table::ReportRuns(const std::vector<Run> &runs)
{
    // A benchmark that is not repeated has only one run, and no median.
    const auto result = std::ranges::find_if(runs, [](const Run &run) {
        return run.repetitions == 1 || run.aggregate_name == "median";
    });
    if (result == runs.end())
        return;

    const std::string &name = result->run_name.function_name;
    if (m_grid.add(name, result->counters, GetOutputStream()))
        return;

    const double seconds = result->counters.at(operationCounter);
    for (const auto &[against, ratio] : result->counters) {
        if (against != operationCounter)
            printRow(name, seconds, against, ratio);
    }
}

void Table::printRow(const std::string &operation, double seconds, const std::string &against,
                     double ratio)
{
    std::ostream &out = GetOutputStream();
    if (!m_hasRows)
        out << "| operation | time | against | ratio | target | |\n|---|---:|---|---:|---:|---|\n";
    m_hasRows = true;
    out << "| " << operation << " | " << timeText(seconds) << " | " << against << " | "
        << numberText(ratio) << " | ";
    printVerdict(operation, against, ratio);
}

void Table::printVerdict(std::string_view operation, std::string_view against, double ratio)
{
    std::ostream &out = GetOutputStream();
    if (const Target *target = findTarget(operation, against)) {
        ++m_targets;
        m_targetsMet += ratio <= target->ratio;
        out << targetText(*target) << " | " << verdict(*target, ratio) << " |\n";
    } else {
        out << "| |\n";
    }
    out.flush();
}

void Table::printGridSummary()
{
    std::ostream &out = GetOutputStream();
    m_grid.printLastBox(out);
    const auto summary = m_grid.summary();
    if (summary.empty())
        return;
    out << "\nThe grid's cells of at most " << longText << " words together:\n\n"
        << "| | number | target | |\n|---|---:|---:|---|\n";
    for (const auto &[what, number] : summary) {
        out << "| " << what << " | " << numberText(number) << " | ";
        printVerdict(gridName, what, number);
    }
}

void Table::Finalize()
{
    printGridSummary();
    if (m_targets > 0)
        GetOutputStream() << "\n" << m_targetsMet << " of " << m_targets << " targets are met.\n";
}

} // namespace ovelin::benchmarks
