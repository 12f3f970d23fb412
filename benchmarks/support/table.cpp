#include "support/table.h"

#include "support/comparison.h"
#include "support/targets.h"

#include <algorithm>
#include <iomanip>
#include <string>
#include <string_view>

namespace ovelin::benchmarks {

namespace {

using Run = benchmark::BenchmarkReporter::Run;

// "relayout/min_time:0.150/repeats:5/manual_time" is "relayout".
std::string workName(const Run &run)
{
    return run.run_name.function_name;
}

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

std::string verdict(const Target &target, double ratio)
{
    if (target.beyond && ratio <= *target.beyond)
        return "met, and beyond";
    return ratio <= target.ratio ? "met" : "**missed**";
}

} // namespace

bool Table::ReportContext(const Context &)
{
    GetOutputStream() << "| work | time | against | ratio | target | |\n"
                         "|---|---:|---|---:|---:|---|\n";
    return true;
}

void Table::ReportRuns(const std::vector<Run> &runs)
{
    const auto median = std::find_if(runs.begin(), runs.end(), [](const Run &run) {
        return run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
    });
    if (median == runs.end())
        return;

    std::ostream &out = GetOutputStream();
    const std::string work = workName(*median);
    const std::string time = timeText(median->counters.at(workCounter));
    for (const auto &[against, ratio] : median->counters) {
        if (against == workCounter)
            continue;
        out << "| " << work << " | " << time << " | " << against << " | " << std::fixed
            << std::setprecision(2) << ratio << " | ";
        if (const Target *target = findTarget(work, against))
            out << "≤ " << target->ratio << " | " << verdict(*target, ratio) << " |\n";
        else
            out << "| |\n";
    }
    out << std::flush;
}

} // namespace ovelin::benchmarks
