#include "subsystems.h"
#include "support/record.h"
#include "support/table.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>

#include <algorithm>
#include <string_view>

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    const bool isRecorded = std::any_of(argv, argv + argc, [](std::string_view argument) {
        return argument.starts_with("--benchmark_out=");
    });
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;

    ovelin::benchmarks::registerText();
    ovelin::benchmarks::registerResources();
    ovelin::benchmarks::registerThrobber();
    ovelin::benchmarks::registerGraphics();
    ovelin::benchmarks::registerTextGrid();
    ovelin::benchmarks::registerScreenful();

    ovelin::benchmarks::Table table;
    ovelin::benchmarks::Record record;
    return benchmark::RunSpecifiedBenchmarks(&table, isRecorded ? &record : nullptr) > 0 ? 0 : 1;
}
