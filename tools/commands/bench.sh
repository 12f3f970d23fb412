# bench [FILTER]
# Measure the speed of the library as ratios to the time of Qt and of other libraries.
#
# Each work and what it is compared with take turns in one run; processor time counts. The tables show
# medians and are also written to build/bench.md. FILTER is a regular expression for the names of works:
# ./dev bench Russian
#
#   ./dev bench --check     count the instructions of some works; fail when a work takes over 3 % more
#                           instructions than benchmarks/instructions.txt records
#   ./dev bench --update    record the present counts in benchmarks/instructions.txt

source "$repository/tools/bench/instructions.sh"

readonly bench_results=$repository/build/bench.md
readonly bench_repetitions=5

# bench_build PROGRAM
bench_build()
{
    build_tree_as bench release -DOVELIN_BUILD_BENCHMARKS=ON -DOVELIN_BUILD_TESTS=OFF \
        -DOVELIN_BUILD_EXAMPLES=OFF -- "$1"
}

bench_measure()
{
    inside env QT_QPA_PLATFORM=offscreen "$tree/benchmarks/ovelin_benchmarks" \
        "--benchmark_filter=$1" "--benchmark_repetitions=$bench_repetitions" | tee "$bench_results"
}

use_workshop
case ${1:-} in
--check | --update)
    bench_build ovelin_instructions
    "instructions_${1#--}" "$tree"
    ;;
--*)
    fail "./dev bench has no option \"$1\"." "\"./dev help bench\" describes the command."
    ;;
*)
    bench_build ovelin_benchmarks
    bench_measure "${1:-.}"
    ;;
esac
