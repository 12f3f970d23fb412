#include "support/machine.h"

#include <QtGlobal>

#include <fstream>

namespace ovelin::benchmarks {

namespace {

std::string processorModel()
{
    std::ifstream file("/proc/cpuinfo");
    const std::string key = "model name\t: ";
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(key))
            return line.substr(key.size());
    }
    return "unknown processor";
}

constexpr auto compiler =
#ifdef __clang__
    __VERSION__;
#else
    "GCC " __VERSION__;
#endif

} // namespace

std::string machineText(const benchmark::BenchmarkReporter::Context &context)
{
    return processorModel() + ", " + std::to_string(context.cpu_info.num_cpus)
           + " processors, with Qt " + qVersion() + " and " + compiler;
}

} // namespace ovelin::benchmarks
