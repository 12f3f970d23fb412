# bench [FILTER]
# Measure the library's speed as ratios to what Qt and others need for the same.
#
# Work and contenders take turns in one run, by processor time; the tables have medians and go to
# build/bench.md as well. FILTER is a regular expression for the names of works: ./dev bench Russian
#
#   ./dev bench --check     count the instructions of some works, and fail when one takes over 3 % more
#                           than benchmarks/instructions.txt says
#   ./dev bench --update    write the counts of now into that file

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
    fail "bench has no option \"$1\"." "\"./dev help bench\" tells what it can do."
    ;;
*)
    bench_build ovelin_benchmarks
    bench_measure "${1:-.}"
    ;;
esac
