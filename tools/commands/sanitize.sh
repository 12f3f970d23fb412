# sanitize [gcc|clang] [CTEST ARGS]
# Run the tests under the sanitizers of both compilers, or of one.
#
# An invalid access, a leak or undefined behaviour fails the test. Programs of this project that a test
# starts are checked as well. The tests of the package are left out: they build programs without
# sanitizers, which cannot load a library with sanitizers.

# Checks that the sanitizers do not make by default.
sanitizer_settings=(
    ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1
    UBSAN_OPTIONS=print_stacktrace=1
)

clang_runtime_folder()
{
    dirname "$(inside clang++ -print-file-name=libclang_rt.asan-x86_64.so)"
}

sanitize_with()
{
    local compiler=$1 entries=()
    shift
    # Clang's sanitizers are in a shared library outside of the loader's search path.
    [[ $compiler != clang ]] || entries+=("-DCMAKE_BUILD_RPATH=$(clang_runtime_folder)")
    build_tree_as "sanitize-$compiler" "sanitize-$compiler" "${entries[@]}" --
    inside env "${sanitizer_settings[@]}" ctest --test-dir "$tree" --output-on-failure --no-tests=error \
        --timeout 600 --exclude-regex "^package_" --parallel "$(processors)" "$@" \
        || fail "Tests failed under $compiler's sanitizers; their output is above." \
            "To repeat only these: ./dev sanitize $compiler --rerun-failed"
}

compilers=(gcc clang)
case ${1:-} in
gcc | clang)
    compilers=("$1")
    shift
    ;;
esac

try_fewer_texts
use_workshop
for compiler in "${compilers[@]}"; do
    sanitize_with "$compiler" "$@"
done
