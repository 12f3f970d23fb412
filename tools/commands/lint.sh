# lint [CHECK...]
# Check the sources, the scripts and the binary interface: all checks, or those named.
#
# text      line ends, blanks and tabs          tidy      clang-tidy
# format    clang-format                        clazy     clazy
# scripts   shellcheck                          headers   each public header compiles alone
# cppcheck  cppcheck                            abi       as ./dev abi
# qml       qmllint
#
# Suppressions stand, each with its reason, in .clang-tidy, in tools/lint, in tools/.shellcheckrc or beside
# the line. clang-tidy and clazy skip a file that was clean, until the file, a header or the settings
# change.

readonly lint_checks=(text format scripts cppcheck qml headers tidy clazy abi)
readonly lint_marks=$cache/linted
readonly our_headers='/(include/ovelin|src|examples|tests|benchmarks|tools)/'

# Lists the files that git knows or would add.
list_files()
{
    git ls-files --cached --others --exclude-standard -- "$@"
}

# Lists only the files that the build tree compiles: clang-tidy and clazy need the compiler's options.
# list_compiled PATTERN...
list_compiled()
{
    list_files "$@" | grep --fixed-strings --line-regexp --file=<(
        sed -n "s|^ *\"file\": \"$repository/\(.*\)\",\?$|\1|p" "$tree/compile_commands.json")
}

# Checks the rules of .editorconfig. The fuzzers wrote the corpus, so no rules hold there.
check_text()
{
    local file faults=0 corpus=':!tests/fuzz/corpus'
    ! git grep --untracked --line-number -I '[[:blank:]]$' -- ':!*.md' "$corpus" >&2 || faults=1
    # debian/rules is a makefile, which needs tabs.
    ! git grep --untracked --line-number -I --perl-regexp '^ *\t' -- ':!packaging/debian/rules' "$corpus" >&2 || faults=1
    while IFS= read -r file; do
        [[ -z $(tail --bytes=1 "$file") ]] || { echo "$file: no line end at the end" >&2 && faults=1; }
    done < <(git grep --untracked --files-with-matches -I '' -- "$corpus")
    return "$faults"
}

check_format()
{
    list_files '*.cpp' '*.h' | inside xargs clang-format --dry-run -Werror >&2
}

check_scripts()
{
    { list_files '*.sh' && git grep --untracked --files-with-matches '^#!.*bash$'; } \
        | inside xargs shellcheck --external-sources >&2
}

check_cppcheck()
{
    list_files '*.cpp' | inside xargs cppcheck --quiet --error-exitcode=1 -j "$(processors)" \
        --enable=warning,performance,portability,style --std=c++20 --library=qt -I include -I src \
        --inline-suppr --suppressions-list=tools/lint/cppcheck.txt >&2
}

check_qml()
{
    build_tree lint all_qmllint
}

check_headers()
{
    build_tree lint all_verify_interface_header_sets
}

# .clang-tidy says why the tests are not checked.
check_tidy()
{
    list_compiled 'src/*.cpp' 'examples/*.cpp' 'docs/*.cpp' 'benchmarks/*.cpp' 'tools/*.cpp' \
        | check_each clang-tidy --quiet -p "$tree"
}

# The samples of docs/ and examples/card are not checked: they have plain string literals, since readers
# copy them, and clazy would ask for other literals.
check_clazy()
{
    local faults=0
    list_compiled 'src/*.cpp' 'examples/tvguide/*.cpp' 'examples/quick/*.cpp' 'benchmarks/*.cpp' | clazy tools/lint/clazy.txt || faults=1
    list_compiled 'tests/*.cpp' 'tools/*.cpp' | clazy tools/lint/clazy{,-tests}.txt || faults=1
    return "$faults"
}

# clazy LIST_OF_CHECKS...
clazy()
{
    local checks
    checks=$(sed 's/#.*//' "$@" | awk 'NF { print $1 }' | paste --serial --delimiters=,)
    check_each clazy-standalone --checks="$checks" --header-filter="$our_headers" -p "$tree"
}

check_abi()
{
    (abi_check)
}

# Runs a command on each file that standard input names, several at a time. Skips the files that have a
# mark of an earlier clean run.
# check_each COMMAND...
check_each()
{
    local settings file mark
    mkdir --parents "$lint_marks"
    settings=$(lint_settings "$@" | sha256sum)
    while IFS= read -r file; do
        mark=$lint_marks/$({ echo "$settings" && cat "$file"; } | sha256sum | cut -c 1-40)
        [[ -e $mark ]] || printf '%s\n' "$mark" "$file"
    done | inside xargs --no-run-if-empty --max-procs="$(processors)" --max-args=2 tools/lint/check-file "$@"
}

# Prints all input of a check besides the checked file.
# lint_settings COMMAND...
lint_settings()
{
    printf '%s\n' "$toolchain_identity" "${@//$repository/}"
    list_files '*.h' '*.clang-tidy' | sort | xargs cat
    sed "s|$repository||g" "$tree/compile_commands.json"
}

for check; do
    [[ " ${lint_checks[*]} " == *" $check "* ]] \
        || fail "There is no check \"$check\"." "There are: ${lint_checks[*]}"
done
(($#)) || set -- "${lint_checks[@]}"

use_workshop
cd "$repository" || exit
# The tests include files that moc writes.
build_tree lint autogen
find "$lint_marks" -mtime +30 -delete 2>/dev/null || true
failed=()
for check; do
    say "Checking: $check"
    "check_$check" || failed+=("$check")
done
((${#failed[@]} == 0)) || fail "These checks found faults: ${failed[*]}; see above." \
    "To repeat only these: ./dev lint ${failed[*]}"
