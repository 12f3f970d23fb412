# test [CTEST ARGS]
# Build everything and run the tests.
#
# Some of them: ./dev test -R textrenderer. Those that failed: ./dev test --rerun-failed

choose_toolchain
build_tree release
inside ctest --test-dir "$tree" --output-on-failure --no-tests=error --timeout 300 \
    --parallel "$(processors)" "$@" \
    || fail "Tests failed; what they printed is above." "Those alone again: ./dev test --rerun-failed"
