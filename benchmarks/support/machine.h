#ifndef OVELIN_BENCHMARKS_MACHINE_H
#define OVELIN_BENCHMARKS_MACHINE_H

#include <benchmark/benchmark.h>

#include <string>

namespace ovelin::benchmarks {

// Returns what the times depend on: the processors, Qt and the compiler.
std::string machineText(const benchmark::BenchmarkReporter::Context &context);

} // namespace ovelin::benchmarks

#endif
