# Counts the instructions of some operations. Other load on the machine does not change the counts.

readonly instructions_file=$repository/benchmarks/instructions.txt

# Without these variables Qt and the C library would choose their code by the processor, and the counts would
# differ from machine to machine.
readonly instructions_environment=(
    QT_QPA_PLATFORM=offscreen
    QT_HASH_SEED=0
    "QT_NO_CPU_FEATURE=sse3 ssse3 sse4.1 sse4.2 avx avx2 bmi bmi2 f16c fma popcnt aes rdrnd"
    "GLIBC_TUNABLES=glibc.cpu.hwcaps=-SSSE3,-SSE4_1,-SSE4_2,-AVX,-AVX2,-BMI1,-BMI2,-ERMS,-FSRM,-AVX_Fast_Unaligned_Load"
)

readonly instructions_runs=5

# Prints lines of "name count". Callgrind writes files for each thread; only those of the first thread are
# read. Qt spreads large fills over threads, and the share of the other threads depends on chance.
# instructions_count TREE
instructions_count()
{
    local folder=$1/instructions
    rm --recursive --force "$folder"
    mkdir --parents "$folder"
    inside env "${instructions_environment[@]}" \
        valgrind --quiet --tool=callgrind --separate-threads=yes "--callgrind-out-file=$folder/counts" \
        "$1/benchmarks/ovelin_instructions" "$instructions_runs" >&2
    awk -v runs="$instructions_runs" '
        /^desc: Trigger: Client Request: / { name = $NF }
        /^summary: / { printf "%s %.0f\n", name, $2 / runs }
    ' "$folder"/counts.*-01
}

# instructions_check TREE
instructions_check()
{
    local verdict=0
    instructions_count "$1" >"$1/instructions.counted"
    awk -f "$repository/tools/lib/measured.awk" -f "$repository/tools/bench/compare.awk" "$1/instructions.counted" "$instructions_file" || verdict=$?
    ((verdict == 0)) || fail "Some operation takes more instructions than $(short_path "$instructions_file") records; see the table above." \
        "Make the operation cheaper, or, if the cost is justified, run: ./dev bench --update"
}

# instructions_update TREE
instructions_update()
{
    instructions_count "$1" >"$1/instructions.counted"
    awk -f "$repository/tools/lib/measured.awk" -f "$repository/tools/bench/update.awk" "$1/instructions.counted" "$instructions_file" \
        >"$1/instructions.updated" || fail "The operations counted differ from those in $(short_path "$instructions_file"); see above." \
        "Add or remove a line there."
    cp "$1/instructions.updated" "$instructions_file"
    git -C "$repository" diff --stat -- "$instructions_file" >&2
}
