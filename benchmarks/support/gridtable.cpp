#include "support/gridtable.h"

#include "contenders/textcontenders.h"
#include "support/comparison.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>

namespace ovelin::benchmarks {

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

// True if the layout is faster than a contender, by the ratio of their times. False if the ratio is unknown.
bool isAhead(double ratio)
{
    return ratio < 1;
}

double counter(const benchmark::UserCounters &counters, const char *name)
{
    const auto found = counters.find(name);
    return found == counters.end() ? unknown : found->second.value;
}

std::string ratioText(double ratio)
{
    if (std::isnan(ratio))
        return "";
    constexpr double large = 10;
    std::ostringstream text;
    text << std::fixed << std::setprecision(ratio < large ? 2 : 0) << ratio;
    return text.str();
}

void printHead(const TextBox &box, std::ostream &out)
{
    out << "\nrelayout() of a text in " << box.name << ", as a multiple of what others take:\n\n"
        << "| text |";
    std::string line = "|---|";
    for (const int wordCount : gridLengths(box)) {
        out << " " << wordCount << " words: floor | loop | Pango | document |";
        line += "---:|---:|---:|---:|";
    }
    if (box.cuts) {
        out << " " << longText << " to " << shortText << " words |";
        line += "---:|";
    }
    out << "\n" << line << "\n";
}

} // namespace

bool GridTable::add(const std::string &cellName, const benchmark::UserCounters &counters,
                    std::ostream &out)
{
    const std::vector<GridCell> cells = gridCells();
    const auto cell = std::ranges::find(cells, cellName, &GridCell::name);
    if (cell == cells.end())
        return false;

    if (m_box != cell->box) {
        printLastBox(out);
        m_box = cell->box;
    }
    m_results.push_back({.cell = *cell,
                         .floor = counter(counters, floorName),
                         .loop = counter(counters, lineLoopName),
                         .pango = counter(counters, pangoName),
                         .document = counter(counters, documentName),
                         .growth = counter(counters, growthName)});
    return true;
}

void GridTable::printLastBox(std::ostream &out) const
{
    if (!m_box)
        return;
    printHead(*m_box, out);
    for (const TextKind &kind : gridKinds) {
        const auto isOfRow = [&](const GridCell &cell) {
            return cell.box == m_box && cell.kind == &kind;
        };
        if (std::ranges::any_of(m_results, isOfRow, &Result::cell))
            printRow(kind, out);
    }
    out.flush();
}

void GridTable::printRow(const TextKind &kind, std::ostream &out) const
{
    out << "| " << kind.name << " |";
    double growth = unknown;
    for (const int wordCount : gridLengths(*m_box)) {
        const GridCell cell{m_box, &kind, wordCount};
        const auto found = std::ranges::find(m_results, cell, &Result::cell);
        if (found == m_results.end()) {
            out << " | | | |";
            continue;
        }
        out << " " << ratioText(found->floor) << " | " << ratioText(found->loop) << " | "
            << ratioText(found->pango) << " | " << ratioText(found->document) << " |";
        growth = std::fmax(growth, found->growth);
    }
    if (m_box->cuts)
        out << " " << ratioText(growth) << " |";
    out << "\n";
}

std::vector<std::pair<std::string, double>> GridTable::summary() const
{
    std::vector<Result> results;
    std::ranges::copy_if(m_results, std::back_inserter(results),
                         [](const Result &r) { return r.cell.wordCount <= longText; });
    if (results.empty())
        return {};

    std::vector<double> toFloor;
    double worstGrowth = unknown;
    double worstEndlessGrowth = unknown;
    for (const Result &result : results) {
        toFloor.push_back(result.floor);
        double &worst = result.cell.kind->endless ? worstEndlessGrowth : worstGrowth;
        worst = std::fmax(worst, result.growth);
    }
    const auto count = [&](const auto &predicate) {
        return double(std::ranges::count_if(results, predicate));
    };
    std::vector<std::pair<std::string, double>> values = {
        {"cells", double(results.size())},
        {"worst against the floor", std::ranges::max(toFloor)},
        {"median against the floor", median(toFloor)},
        {"cells over 5 × the floor", count([](const Result &r) { return r.floor > 5; })},
        {"cells over 4 × the floor", count([](const Result &r) { return r.floor > 4; })},
        {"cells not ahead of Pango", count([](const Result &r) { return !isAhead(r.pango); })},
        {"cells not ahead of the loop", count([](const Result &r) { return !isAhead(r.loop); })},
        {"cells not ahead of both",
         count([](const Result &r) { return !isAhead(r.loop) || !isAhead(r.pango); })},
        {"cells that cut not ahead of the loop",
         count([](const Result &r) { return r.cell.box->cuts && !isAhead(r.loop); })},
        {"worst growth from 200 to 2000 words", worstGrowth},
        {"worst growth of an endless word", worstEndlessGrowth},
    };
    std::erase_if(values, [](const auto &value) { return std::isnan(value.second); });
    return values;
}

} // namespace ovelin::benchmarks
