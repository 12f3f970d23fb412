#include "support/comparison.h"

#include "support/shapercalls.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>

namespace ovelin::benchmarks {

namespace {

using Seconds = std::chrono::duration<double>;

// The least time of one measurement. Reading the clock is a system call, whose time would count in shorter
// measurements.
constexpr Seconds shortestMeasurement{0.0005};

// The least time of each repetition, and of the only run of a comparison that is not repeated.
constexpr Seconds repetitionTime{0.1};
constexpr Seconds singleRunTime{0.3};
constexpr int fewestRounds = 3;

// The processor time of this program and all its threads. Other programs do not count. Large fills, for which
// Qt uses threads, count as on a device with one processor.
Seconds processorTime()
{
    timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

class Measurement
{
public:
    explicit Measurement(std::function<void()> run, std::function<void()> undo = {})
        : m_run(std::move(run))
        , m_undo(std::move(undo))
    {
        measure(m_count);
        while (measure(m_count) < shortestMeasurement)
            m_count *= 2;
    }

    // Returns the time of all runs of one round.
    Seconds runRound()
    {
        const Seconds total = measure(m_count);
        m_secondsPerRun.push_back(total.count() / m_count);
        return total;
    }

    double medianSeconds() const { return median(m_secondsPerRun); }

    // Returns the median of the ratios of all rounds: the time of this measurement divided by the time of the other.
    double ratioTo(const Measurement &other) const
    {
        std::vector<double> ratios;
        std::ranges::transform(m_secondsPerRun, other.m_secondsPerRun, std::back_inserter(ratios),
                               std::divides());
        return median(std::move(ratios));
    }

private:
    Seconds measure(int count) const
    {
        if (m_undo)
            return measureSingly(count);
        const Seconds begin = processorTime();
        for (int i = 0; i < count; ++i)
            m_run();
        return processorTime() - begin;
    }

    Seconds measureSingly(int count) const
    {
        Seconds total{};
        for (int i = 0; i < count; ++i) {
            const Seconds begin = processorTime();
            m_run();
            total += processorTime() - begin;
            m_undo();
        }
        return total;
    }

    std::function<void()> m_run;
    std::function<void()> m_undo;
    int m_count = 1;
    std::vector<double> m_secondsPerRun;
};

void run(const Comparison &comparison, benchmark::State &state, Seconds time)
{
    std::vector<Measurement> measurements{Measurement(comparison.operation, comparison.undo)};
    for (const Contender &contender : comparison.contenders)
        measurements.emplace_back(contender.run);

    std::vector<Measurement *> order;
    order.reserve(measurements.size());
    for (Measurement &measurement : measurements)
        order.push_back(&measurement);

    for ([[maybe_unused]] const auto &repetition : state) {
        Seconds total{};
        for (int round = 0; round < fewestRounds || total < time; ++round) {
            for (Measurement *measurement : order)
                total += measurement->runRound();
            // The first measurement of a round may find colder caches. So the next round has the opposite order.
            std::ranges::reverse(order);
        }
        state.SetIterationTime(total.count());
    }

    state.SetLabel(comparison.recordedAs);
    const Measurement &operation = measurements.front();
    state.counters[operationCounter] = operation.medianSeconds();
    for (std::size_t i = 0; i < comparison.contenders.size(); ++i)
        state.counters[comparison.contenders[i].name] = operation.ratioTo(measurements[i + 1]);
}

template<typename Function>
benchmark::internal::Benchmark *registerBenchmark(const std::string &name, Function function)
{
    return benchmark::RegisterBenchmark(name, std::move(function))->UseManualTime()->Iterations(1);
}

} // namespace

void compare(const std::string &name, std::function<Comparison()> makeComparison)
{
    registerBenchmark(name, [makeComparison = std::move(makeComparison)](benchmark::State &state) {
        run(makeComparison(), state, repetitionTime);
    });
}

void compareOnce(const std::string &name, std::function<Comparison()> makeComparison)
{
    const auto measure = [makeComparison = std::move(makeComparison)](benchmark::State &state) {
        run(makeComparison(), state, singleRunTime);
    };
    registerBenchmark(name, measure)->Repetitions(1);
}

void countShaping(const std::string &name, std::function<std::function<void()>()> makeAction)
{
    registerBenchmark(name, [makeAction = std::move(makeAction)](benchmark::State &state) {
        const auto action = makeAction();
        run({.operation = action}, state, repetitionTime);
        state.counters[shaperCallsCounter] = tests::countShaperCalls(action);
    });
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace ovelin::benchmarks
