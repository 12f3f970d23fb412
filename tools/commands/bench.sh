# bench [FILTER]
# Measure the speed of the library as ratios to the time of Qt and of other libraries.
#
# An operation and what it is compared with run in turns. The times are processor times. The
# tables show medians and are also written to build/bench.md. FILTER is a regular expression for the names
# of benchmarks: ./dev bench Russian
#
#   ./dev bench --check     count the instructions of some benchmarks; fail when one takes over 3 % more
#                           than benchmarks/instructions.txt records
#   ./dev bench --update    record the present counts in benchmarks/instructions.txt
#   ./dev bench --record    measure the times of texts in some four minutes, record them in
#                           docs/measured/speed.csv, and draw the plots in docs/images

source "$repository/tools/bench/instructions.sh"
source "$repository/tools/docs/build.sh"

readonly bench_results=$repository/build/bench.md
readonly bench_repetitions=5

# bench_build PROGRAM
bench_build()
{
    build_tree_as bench release -DOVELIN_BUILD_BENCHMARKS=ON -DOVELIN_BUILD_TESTS=OFF \
        -DOVELIN_BUILD_EXAMPLES=OFF -- "$1"
}

# bench_measure FILTER [OPTION...]
bench_measure()
{
    inside env QT_QPA_PLATFORM=offscreen "$tree/benchmarks/ovelin_benchmarks" \
        "--benchmark_filter=$1" "--benchmark_repetitions=$bench_repetitions" "${@:2}" | tee "$bench_results"
}

# A run that is broken off leaves the recorded times as they are.
bench_record()
{
    bench_measure '^(grid|screenful):' "--benchmark_out=$tree/speed.csv"
    cp "$tree/speed.csv" "$plots_data"
    docs_draw_plots
}

use_workshop
case ${1:-} in
--check | --update)
    bench_build ovelin_instructions
    "instructions_${1#--}" "$tree"
    ;;
--record)
    bench_build ovelin_benchmarks
    bench_record
    ;;
--*)
    fail "./dev bench has no option \"$1\"." "\"./dev help bench\" describes the command."
    ;;
*)
    bench_build ovelin_benchmarks
    bench_measure "${1:-.}"
    ;;
esac
