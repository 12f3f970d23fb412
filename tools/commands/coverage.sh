# coverage [CTEST ARGS]
# Count the lines and branches of the library that the tests reach: build/coverage/index.html
#
# It fails below 99 % of the lines or 95 % of the branches. It also fails when the places not reached
# differ from the list in tools/coverage/uncovered.txt, which gives a reason for each. The tables are
# written to build/coverage/lines.txt and branches.txt. With CTEST ARGS the list is not compared.

readonly coverage_results=$repository/build/coverage
readonly coverage_tools=$repository/tools/coverage
readonly least_lines=99 # per cent
readonly least_branches=95 # per cent

# Leaves out the branches that only an exception takes or that only the compiler made.
report_coverage()
{
    mkdir --parents "$coverage_results"
    inside_repository gcovr --root . --filter src/ --filter include/ -j "$(processors)" \
        --exclude-throw-branches --exclude-unreachable-branches \
        --fail-under-line "$least_lines" --fail-under-branch "$least_branches" \
        --html-details "$coverage_results/index.html" "$@" "$tree"
}

try_fewer_texts
use_workshop
# The examples are not built: code that only the tests of the examples reach does not count as tested.
build_tree_as coverage coverage -DOVELIN_BUILD_EXAMPLES=OFF --
find "$tree" -name '*.gcda' -delete
# With a random seed, chance would decide which keys a QHash compares, and so which lines are reached.
inside env QT_HASH_SEED=0 ctest --test-dir "$tree" --output-on-failure --no-tests=error --timeout 600 \
    --exclude-regex "^package_" --parallel "$(processors)" "$@" \
    || fail "Tests failed; what they printed is above."
report_coverage --txt-metric branch --txt "$coverage_results/branches.txt" >/dev/null || true
report_coverage --json "$coverage_results/coverage.json" --txt --print-summary | tee "$coverage_results/lines.txt" \
    || fail "Too little is covered; build/coverage/index.html shows what is missing."
(($#)) || inside python3 "$coverage_tools/compare.py" "$repository" "$coverage_results/coverage.json" \
    || fail "The places not reached differ from the list in $(short_path "$coverage_tools")/uncovered.txt; see above." \
        "Add a test that reaches the place, or list it there with the reason. Take places that are reached off the list."
