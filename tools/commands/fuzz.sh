# fuzz [TARGET] [SECONDS|FILE]
# Try the library with random input: one target or each target, for SECONDS (60 by default).
#
# The targets are text, tracker and xmltv. A run starts with the inputs in tests/fuzz/corpus and with
# those that earlier runs left in build/fuzz. Inputs that fail are kept in build/fuzz as well. FILE
# replays one input:
#
#   ./dev fuzz text build/fuzz/text/crash-0123abcd
#
# OVELIN_FUZZ_SEED=N sets the seed of the random input. Without it, each run has a new seed.

readonly fuzzer_sources=$repository/tests/fuzz
readonly fuzzer_results=$repository/build/fuzz
readonly usual_seconds=60
readonly most_seconds_per_input=120 # an input that takes longer counts as a hang
readonly longest_input=4096 # bytes

fuzzer_names()
{
    local file
    for file in "$fuzzer_sources"/fuzz_*.cpp; do
        file=${file##*/fuzz_}
        echo "${file%.cpp}"
    done
}

is_number()
{
    [[ $1 =~ ^[0-9]+$ ]]
}

# fuzzer_run TARGET ARGS
fuzzer_run()
{
    mkdir --parents "$fuzzer_results/$1"
    UBSAN_OPTIONS=print_stacktrace=1 inside "$tree/tests/fuzz/fuzz_$1" \
        "-artifact_prefix=$fuzzer_results/$1/" "${@:2}"
}

fuzzer_log_value()
{
    sed -n "s/^.*$1 *\([0-9]*\).*/\1/p" "$2" | tail --lines=1
}

# fuzz TARGET SECONDS
fuzz()
{
    local target=$1 seconds=$2 results=$fuzzer_results/$1 log=$fuzzer_results/$1.log
    local corpus=$fuzzer_sources/corpus/$target
    mkdir --parents "$results/corpus"
    say "Fuzzing $target for $seconds seconds; its log is $(short_path "$log")"
    fuzzer_run "$target" "$results/corpus" "$corpus" "-dict=$fuzzer_sources/$target.dict" \
        "-seed=${OVELIN_FUZZ_SEED:-0}" \
        "-max_total_time=$seconds" "-timeout=$most_seconds_per_input" \
        "-max_len=$longest_input" -print_final_stats=1 >"$log" 2>&1 \
        || fuzzing_failed "$target" "$log"
    say "$target: $(fuzzer_log_value stat::number_of_executed_units: "$log") executions," \
        "coverage $(fuzzer_log_value cov: "$log"), features $(fuzzer_log_value ft: "$log"), nothing found"
}

# fuzzing_failed TARGET LOG
fuzzing_failed()
{
    local input
    input=$(sed -n 's/.*Test unit written to //p' "$2" | tail --lines=1)
    grep --max-count=1 --after-context=12 --text \
        --regexp='^Violation' --regexp='runtime error' --regexp='^==[0-9]*== *ERROR' "$2" >&2 || tail "$2" >&2
    [[ -n $input ]] || fail "The fuzzer of $1 did not run; its message is above."
    fail "The fuzzer of $1 found a fault: see above and $(short_path "$2")." \
        "Replay it: ./dev fuzz $1 $(short_path "$input")" \
        "The input in base64, for another machine: $(base64 --wrap=0 "$input")"
}

targets=()
if (($#)) && ! is_number "$1"; then
    [[ -f $fuzzer_sources/fuzz_$1.cpp ]] || fail "There is no target \"$1\"." "Targets:" "$(fuzzer_names)"
    targets=("$1")
    shift
else
    mapfile -t targets < <(fuzzer_names)
fi

use_workshop
build_tree fuzz "${targets[@]/#/fuzz_}"
if (($#)) && ! is_number "$1"; then
    fuzzer_run "${targets[0]}" "$@" || fail "The input still fails; the fault is above."
    exit
fi
for target in "${targets[@]}"; do
    fuzz "$target" "${1:-$usual_seconds}"
done
