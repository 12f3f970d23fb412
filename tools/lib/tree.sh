# Build trees: build/<tool chain>/<name>, so that no tool chain ever meets another one's files.

# Configures and builds; sets tree. Targets default to everything.
# build_tree PRESET [TARGET...]
build_tree()
{
    build_tree_as "$1" "$1" -- "${@:2}"
}

# The same under another name and with cache entries beyond the preset's.
# build_tree_as NAME PRESET [-DENTRY=VALUE...] -- [TARGET...]
build_tree_as()
{
    local preset=$2 entries=() targets=() lock
    tree=$repository/build/$toolchain/$1
    shift 2
    while [[ $1 != -- ]]; do
        entries+=("$1")
        shift
    done
    shift
    targets=("$@")

    mkdir --parents "${tree%/*}"
    exec {lock}>"$tree.lock"
    take_lock "$lock" "is building $(short_path "$tree")"
    tree_configure "$preset" "${entries[@]}"
    tree_compile "${targets[@]}"
    exec {lock}>&-
}

short_path()
{
    echo "${1#"$repository"/}"
}

# A tree remembers what it was configured from. Another compiler or Qt means to begin anew; when only
# the preset or an entry changed, the build sees what that concerns, as it sees changed CMakeLists.txt.
tree_configure()
{
    local preset=$1 origin before
    shift
    origin=$(printf '%s\n' "$toolchain_identity" "$repository" "$preset" "$@" "$(<"$repository/CMakePresets.json")")
    before=$(cat "$tree/configured-from" 2>/dev/null || true)
    [[ $before != "$origin" ]] || return 0

    say "Configuring $(short_path "$tree")"
    [[ ${before%%$'\n'*} == "$toolchain_identity" ]] || rm --recursive --force "$tree"
    rm --force "$tree/configured-from"
    mkdir --parents "$tree"
    ! inside which ccache >/dev/null || set -- -DCMAKE_CXX_COMPILER_LAUNCHER=ccache "$@"
    # Of a compiler that nobody has tried before warnings are to be expected.
    [[ $toolchain != host ]] || set -- --compile-no-warning-as-error "$@"
    inside_repository cmake --fresh --preset "$preset" -B "$tree" "$@" >"$tree/configure.log" \
        || fail "CMake could not configure $(short_path "$tree"); its message is above." \
            "The rest of what it said is in $(short_path "$tree")/configure.log"
    echo "$origin" >"$tree/configured-from"
}

tree_compile()
{
    tree_is_fresh "$@" && return
    say "Building $(short_path "$tree")"
    inside_repository cmake --build "$tree" ${1:+--target "$@"} >&2 \
        || fail "Building $(short_path "$tree") failed; the first error above is the one to mend."
}

tree_is_fresh()
{
    [[ $(inside_repository ninja -C "$tree" -n "$@" 2>&1 | tail --lines=1) == *"no work to do"* ]]
}

inside_repository()
{
    (cd "$repository" && inside "$@")
}

processors()
{
    echo "${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}"
}

# For tools under which everything takes many times as long: the tests that try many texts try fewer,
# unless the user has set how many.
try_fewer_texts()
{
    export OVELIN_TEXT_CASES=${OVELIN_TEXT_CASES:-150}
}
