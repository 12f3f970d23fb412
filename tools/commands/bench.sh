# bench [FILTER]
# Measure how long the library's work takes, as ratios to what Qt and others need for the same.
#
# Work and contenders take turns in one run, by the processor time of their thread; the table has medians
# and goes to build/bench.md as well. FILTER is a regular expression for the names of works:
#
#   ./dev bench 'relayout: Russian'

readonly bench_results=$repository/build/bench.md
readonly bench_repetitions=5

use_workshop
build_tree_as bench release -DOVELIN_BUILD_BENCHMARKS=ON -DOVELIN_BUILD_TESTS=OFF -DOVELIN_BUILD_EXAMPLES=OFF -- \
    ovelin_benchmarks
inside env QT_QPA_PLATFORM=offscreen "$tree/benchmarks/ovelin_benchmarks" \
    "--benchmark_filter=${1:-.}" "--benchmark_repetitions=$bench_repetitions" | tee "$bench_results"
