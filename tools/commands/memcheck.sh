# memcheck [CTEST ARGS]
# Run the tests under valgrind's memcheck.
#
# An invalid access, a use of uninitialised memory or a definite leak fails the test. Programs of this
# project that a test starts are checked as well.

# Prints the cache entry by which CMake puts a program in front of every test: CMake before 3.29 knows only
# the emulator.
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
    # QT_HASH_SEED=0: otherwise Qt hashes 16 bytes at once and reads past the end of a short string.
    # soname-synonyms: otherwise valgrind replaces the operator new by which a test lets memory run out.
    local words=(
        env QT_HASH_SEED=0
        valgrind --quiet --num-callers=40 --trace-children=yes '--trace-children-skip=/usr/*,/bin/*'
        --soname-synonyms=somalloc=nouserintercepts
        --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite
        --error-exitcode=99 "--suppressions=$repository/tools/valgrind.supp"
    )
    (IFS=';' && echo "${words[*]}")
}

choose_toolchain
require_programs valgrind
build_tree_as memcheck release "-D$(launcher_entry)=$(memcheck_command)" --

grep --quiet --recursive --include=CTestTestfile.cmake valgrind "$tree" \
    || fail "CMake did not put valgrind in front of the tests."
inside ctest --test-dir "$tree" --output-on-failure --no-tests=error --timeout 3000 \
    --parallel "$(processors)" "$@" \
    || fail "Tests failed under memcheck; their output is above." \
        "To repeat only these: ./dev memcheck --rerun-failed"
