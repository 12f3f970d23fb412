# test [CTEST ARGS]
# Build everything and run the tests.
#
# Only some tests: ./dev test -R textrenderer. Only those that failed: ./dev test --rerun-failed

choose_toolchain
build_tree release
inside ctest --test-dir "$tree" --output-on-failure --no-tests=error --timeout 300 \
    --parallel "$(processors)" "$@" \
    || fail "Tests failed; their output is above." "To repeat only these: ./dev test --rerun-failed"
