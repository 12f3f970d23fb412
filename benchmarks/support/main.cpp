#include "subsystems.h"
#include "support/table.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;

    ovelin::benchmarks::registerText();
    ovelin::benchmarks::registerResources();
    ovelin::benchmarks::registerThrobber();
    ovelin::benchmarks::registerGraphics();
    ovelin::benchmarks::registerTextGrid();

    ovelin::benchmarks::Table table;
    return benchmark::RunSpecifiedBenchmarks(&table) > 0 ? 0 : 1;
}
