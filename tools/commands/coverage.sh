# coverage [CTEST ARGS]
# Count which lines and branches of the library the tests reach: build/coverage/index.html
#
# Fails below 99 % of the lines or 95 % of the branches that our code decides. The tables are also
# written to build/coverage/lines.txt and branches.txt. Why a few places are not reached is told in
# tools/coverage/uncovered.txt: all tests together must reach everything else, and nothing of that.

readonly coverage_results=$repository/build/coverage
readonly coverage_tools=$repository/tools/coverage
readonly least_lines=99
readonly least_branches=95

# Branches that only an exception takes, or that the compiler made for itself, are not ours.
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
# The example is no test of the library, and what counts is linked into it as no package has it.
build_tree_as coverage coverage -DOVELIN_BUILD_EXAMPLES=OFF --
find "$tree" -name '*.gcda' -delete
# Which keys a hash table compares would be left to chance.
inside env QT_HASH_SEED=0 ctest --test-dir "$tree" --output-on-failure --no-tests=error --timeout 600 \
    --exclude-regex "^package_" --parallel "$(processors)" "$@" \
    || fail "Tests failed; what they printed is above."
report_coverage --txt-metric branch --txt "$coverage_results/branches.txt" >/dev/null || true
report_coverage --json "$coverage_results/coverage.json" --txt --print-summary | tee "$coverage_results/lines.txt" \
    || fail "Too little is covered; build/coverage/index.html shows what is missing."
(($#)) || inside python3 "$coverage_tools/compare.py" "$repository" "$coverage_results/coverage.json" \
    || fail "What is not reached is not what $(short_path "$coverage_tools")/uncovered.txt lists; see above." \
        "Reach it with a test, or list it there with the reason; take out what is reached."
