#include "support/record.h"

#include "contenders/textcontenders.h"
#include "support/comparison.h"
#include "support/machine.h"

#include <QDate>

#include <cmath>
#include <string>

namespace ovelin::benchmarks {

namespace {

long long nanoseconds(double seconds)
{
    constexpr double nanosecondsPerSecond = 1e9;
    return std::llround(seconds * nanosecondsPerSecond);
}

} // namespace

bool Record::ReportContext(const Context &context)
{
    GetOutputStream() << "# Nanoseconds, written by ./dev bench --record.\n"
                      << "# Measured on " << machineText(context) << ", on "
                      << QDate::currentDate().toString(Qt::ISODate).toStdString() << ".\n"
                      << "text,box,words,ovelin,floor,loop,Pango,QTextDocument\n";
    return true;
}

void Record::ReportRuns(const std::vector<Run> &runs)
{
    std::ostream &out = GetOutputStream();
    for (const Run &run : runs) {
        if (run.report_label.empty())
            continue;
        const double operation = run.counters.at(operationCounter);
        out << run.report_label << ',' << nanoseconds(operation);
        for (const auto *contender : {floorName, lineLoopName, pangoName, documentName}) {
            out << ',';
            const auto ratio = run.counters.find(contender);
            if (ratio != run.counters.end())
                out << nanoseconds(operation / ratio->second);
        }
        out << '\n';
    }
    out.flush();
}

} // namespace ovelin::benchmarks
