# memcheck [CTEST ARGS]
# Run the tests under valgrind's memcheck.
#
# An invalid access, a use of uninitialised memory or a definite leak fails the test.

# The name under which this CMake puts a program in front of every test.
launcher_entry()
{
    local version
    version=$(inside cmake --version | sed -n '1s/[^0-9]*//p')
    if version_at_least 3.29 "$version"; then
        echo CMAKE_TEST_LAUNCHER
    else
        echo CMAKE_CROSSCOMPILING_EMULATOR
    fi
}

memcheck_command()
{
    local words=(
        valgrind --quiet --num-callers=40
        --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite
        --error-exitcode=99
        "--suppressions=$repository/tools/valgrind.supp"
    )
    (IFS=';' && echo "${words[*]}")
}

choose_toolchain
require_programs valgrind
build_tree_as memcheck release "-D$(launcher_entry)=$(memcheck_command)" --

grep --quiet --recursive --include=CTestTestfile.cmake valgrind "$tree" \
    || fail "CMake did not put valgrind in front of the tests."
inside ctest --test-dir "$tree" --output-on-failure --no-tests=error --parallel "$(processors)" "$@" \
    || fail "Tests failed under memcheck; what it and they printed is above." \
        "Those alone again: ./dev memcheck --rerun-failed"
