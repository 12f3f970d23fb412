# What the library costs on the device, measured under emulation.

readonly box_budgets=$repository/tools/box/budgets.txt

# Writes and prints the table of costs; fails when a budget is exceeded.
# box_tell_cost TREE TABLE
box_tell_cost()
{
    local tree=$1 table=$2
    local measured=$tree/cost
    say "Measuring what the library costs on the device"
    mkdir --parents "$tree/cost-work" "${table%/*}"
    {
        box_measure_file "$tree"
        box_measure_load "$tree"
        box_measure_use "$tree"
    } >"$measured"

    local verdict=0
    awk -f "$repository/tools/lib/measured.awk" -f "$repository/tools/box/table.awk" "$measured" "$box_budgets" >"$table" || verdict=$?
    cat "$table"
    ((verdict == 0)) || fail "The library costs more than $(short_path "$box_budgets") allows; see the table above." \
        "Make it smaller, or change the budget and say why there."
}

# The measuring functions print lines of "name value".

# Measures the library's file as it is installed.
# box_measure_file TREE
box_measure_file()
{
    local library=$1/cost-work/libovelin.so
    inside mipsel-linux-gnu-strip --strip-unneeded -o "$library" "$(realpath "$1/src/libovelin.so")"

    echo "size-file $(stat --format=%s "$library")"
    inside mipsel-linux-gnu-size --format=sysv "$library" | awk '
        $1 ~ /^\.(text|init|fini|plt|MIPS\.stubs)$/ { text += $2 }
        $1 ~ /^\.(rodata|eh_frame|eh_frame_hdr|gcc_except_table)$/ { constant += $2 }
        $1 ~ /^\.(data|data\.rel\.ro|got|init_array|fini_array|sdata)$/ { data += $2 }
        $1 ~ /^\.s?bss$/ { bss += $2 }
        $1 ~ /^\.(dynamic|dynsym|dynstr|hash|gnu\.hash|MIPS\.xhash|gnu\.version(_[dr])?|rel\.(dyn|plt))$/ { loader += $2 }
        END {
            print "size-text", text
            print "size-rodata", constant
            print "size-data", data
            print "size-bss", bss
            print "size-loader", loader
        }'
    # The ABI leaves the first record of each relocation table empty.
    echo "relocations $(inside mipsel-linux-gnu-readelf --relocs --wide "$library" \
        | awk '/^[0-9a-f]+ / && $3 != "R_MIPS_NONE"' | wc --lines)"
    echo "symbols $(inside mipsel-linux-gnu-nm --dynamic --defined-only "$library" | grep --count ' [TtVvWwDdBbRru] ')"
    echo "needed $(inside mipsel-linux-gnu-readelf --dynamic "$library" | grep --count '(NEEDED)')"
}

box_measure_load()
{
    box_run "$1/tools/box/probe/loadprobe" "$1/cost-work/libovelin.so"
    box_count "$1/tools/box/probe/loadprobe" "$1/cost-work/libovelin.so"
}

# useprobe registers a resource without a message, and another one with a message. The cost of the message is the
# difference.
# box_measure_use TREE
box_measure_use()
{
    box_run "$1/tools/box/probe/useprobe"
    box_count "$1/tools/box/probe/useprobe" | awk '
        { count[$1] = $2 }
        $1 != "instructions-registration-with-message" { print }
        END { print "instructions-message", count["instructions-registration-with-message"] - count["instructions-registration"] }'
}

box_run()
{
    inside "${box_emulator[@]}" "$@"
}

# Counts the instructions of the actions that a program marks. The emulator's log is large: it goes through
# a pipe, and the program's own output to a file.
# box_count PROGRAM ARGS
box_count()
{
    inside "${box_emulator[@]}" -d in_asm,exec,nochain,strace -D /dev/fd/3 "$@" \
        3>&1 >"$tree/cost-work/output" \
        | inside mawk -f "$repository/tools/box/instructions.awk"
}
