# box [CTEST ARGS]
# Build for the MIPS32 device, run the tests under emulation, and measure what the library costs there.
#
# The first run builds Qt for the device and keeps it in ~/.cache/ovelin: seven minutes on two
# processors. The table of costs is written to build/box/cost.md; tools/box/budgets.txt has the budgets.
#
# With CTEST ARGS only the tests run: ./dev box -R textrenderer

source "$repository/tools/box/qt.sh"
source "$repository/tools/box/rapidcheck.sh"
source "$repository/tools/box/guide.sh"
source "$repository/tools/box/cost.sh"

readonly box_results=$repository/build/box
# The same command as CMAKE_CROSSCOMPILING_EMULATOR in the toolchain file, which runs the tests.
readonly box_emulator=(
    qemu-mipsel -L /usr/mipsel-linux-gnu
    -E QT_QPA_PLATFORM=offscreen -E QT_QPA_FONTDIR=/usr/share/fonts/truetype/dejavu
)
readonly box_excluded_tests=$repository/tools/box/excluded-tests.txt

box_run_tests()
{
    say "Not run under emulation, for the reasons in $(short_path "$box_excluded_tests"):" \
        "$(grep --invert-match '^#' "$box_excluded_tests")"
    say "Each test of many texts tries $OVELIN_TEXT_CASES texts."
    inside ctest --test-dir "$tree" --output-on-failure --no-tests=error --parallel "$(processors)" \
        --exclude-from-file "$box_excluded_tests" "$@"
}

# Prints the test functions that skipped themselves.
box_tell_skipped()
{
    local log=$tree/Testing/Temporary/LastTest.log
    ! grep --quiet '^SKIP ' "$log" || {
        say "Skipped by the tests themselves:"
        grep --no-group-separator --after-context=1 '^SKIP ' "$log" >&2
    }
}

# Fails when the build for the device lacks a test of the host that is not excluded.
# box_check_no_test_is_missing HOST_TREE BOX_TREE
box_check_no_test_is_missing()
{
    local host_tests missing
    host_tests=$(box_test_names "$1")
    [[ -n $host_tests ]] || fail "The build for the host has no tests to compare with."
    missing=$(comm -23 <(echo "$host_tests") \
        <({ box_test_names "$2" && grep --invert-match '^#' "$box_excluded_tests"; } | sort))
    [[ -z $missing ]] || fail "The build for the device lacks these tests of the host:" "$missing"
}

# box_test_names TREE
box_test_names()
{
    # CTest appends a mark to the name of a disabled test.
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
