# box [CTEST ARGS]
# Build for the MIPS32 box, run the tests under emulation, and tell what the library costs there.
#
# The first time, Qt for the box is built and kept beside the build root: seven minutes on two
# processors. The table of costs goes to build/box/cost.md; the budgets stand in tools/box/budgets.txt.
#
# With CTEST ARGS only the tests are run: ./dev box -R textrenderer

source "$repository/tools/box/qt.sh"
source "$repository/tools/box/rapidcheck.sh"
source "$repository/tools/box/guide.sh"
source "$repository/tools/box/cost.sh"

readonly box_results=$repository/build/box
# As the toolchain file has it for the tests.
readonly box_emulator=(
    qemu-mipsel -L /usr/mipsel-linux-gnu
    -E QT_QPA_PLATFORM=offscreen -E QT_QPA_FONTDIR=/usr/share/fonts/truetype/dejavu
)
readonly box_excluded_tests=$repository/tools/box/excluded-tests.txt

# Tests that the emulator cannot run, with the reason of each.
box_tell_excluded_tests()
{
    local name reason
    while read -r name reason; do
        say "Not run under emulation: $name: $reason"
    done < <(box_list_excluded_tests)
}

box_list_excluded_tests()
{
    sed 's/#.*//; /^[[:space:]]*$/d' "$box_excluded_tests"
}

box_excluded_pattern()
{
    box_list_excluded_tests | awk '{ print "^" $1 "$" }' | paste --serial --delimiters='|'
}

box_run_tests()
{
    local exclude=() pattern
    pattern=$(box_excluded_pattern)
    [[ -z $pattern ]] || exclude=(--exclude-regex "$pattern")
    box_tell_excluded_tests
    say "The tests of many texts try $OVELIN_TEXT_CASES each here."
    inside ctest --test-dir "$tree" --output-on-failure --no-tests=error --parallel "$(processors)" \
        "${exclude[@]}" "$@"
}

# What a test function left out by itself is told as well.
box_tell_skipped()
{
    local log=$tree/Testing/Temporary/LastTest.log
    ! grep --quiet '^SKIP ' "$log" || {
        say "Left out by the tests themselves:"
        grep --no-group-separator --after-context=1 '^SKIP ' "$log" >&2
    }
}

# Whatever the host runs runs here as well: a test that the build for the box lacks is an error.
box_check_no_test_is_missing()
{
    local host_tests missing
    host_tests=$(box_test_names "$1")
    [[ -n $host_tests ]] || fail "The build for the host has no tests to compare with."
    missing=$(comm -23 <(echo "$host_tests") <(box_test_names "$2"))
    [[ -z $missing ]] || fail "The build for the box lacks these tests of the host:" "$missing"
}

box_test_names()
{
    # CTest marks a disabled test behind its name.
    inside ctest --test-dir "$1" --show-only | sed -n 's/^ *Test *#[0-9]*: \([^ ]*\).*/\1/p' | sort
}

try_fewer_texts
use_workshop
box_require_qt
box_require_rapidcheck
build_tree_as box box "-DOVELIN_BOX_QT=$box_qt" "-Drapidcheck_DIR=$box_rapidcheck_cmake" --
if (($#)); then
    box_run_tests "$@"
    exit
fi
box_tree=$tree
build_tree release tvguide
host_tree=$tree
tree=$box_tree

box_check_no_test_is_missing "$host_tree" "$box_tree"
box_run_tests
box_tell_skipped
box_compare_guide "$host_tree" "$box_tree"
box_tell_cost "$box_tree" "$box_results/cost.md"
