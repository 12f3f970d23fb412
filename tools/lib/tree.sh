# Build trees. Each stands in build/<tool chain>/<name>.

# Configures and builds a tree; sets tree, its folder. Without TARGET it builds everything.
# build_tree PRESET [TARGET...]
build_tree()
{
    build_tree_as "$1" "$1" -- "${@:2}"
}

# Does what build_tree does, for a tree with another name than its preset and with more cache entries.
# build_tree_as NAME PRESET [-DENTRY=VALUE...] -- [TARGET...]
build_tree_as()
{
    local preset=$2 entries=() lock
    tree=$repository/build/$toolchain/$1
    shift 2
    while [[ $1 != -- ]]; do
        entries+=("$1")
        shift
    done
    shift

    mkdir --parents "${tree%/*}"
    take_lock "$tree.lock" "is building $(short_path "$tree")"
    tree_configure "$preset" "${entries[@]}"
    tree_compile "$@"
    exec {lock}>&-
}

# Prints a path relative to the repository.
short_path()
{
    echo "${1#"$repository"/}"
}

# Configures the tree unless its file configured-from has the same tool chain, presets and entries. For
# another tool chain it empties the tree first. Ninja itself notices a changed CMakeLists.txt.
# tree_configure PRESET [-DENTRY=VALUE...]
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
    # The machine's compiler may give warnings that no tested compiler gives.
    [[ $toolchain != host ]] || set -- --compile-no-warning-as-error "$@"
    inside_repository cmake --fresh --preset "$preset" -B "$tree" "$@" >"$tree/configure.log" \
        || fail "CMake could not configure $(short_path "$tree"); its message is above." \
            "The rest of its output is in $(short_path "$tree")/configure.log"
    echo "$origin" >"$tree/configured-from"
}

tree_compile()
{
    tree_is_fresh "$@" && return
    say "Building $(short_path "$tree")"
    inside_repository cmake --build "$tree" ${1:+--target "$@"} >&2 \
        || fail "Building $(short_path "$tree") failed; correct the first error above."
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

# Sets OVELIN_TEXT_CASES unless the user has: each test of random texts then tries 150 texts instead of 1000.
# For tools that make the tests many times slower.
try_fewer_texts()
{
    export OVELIN_TEXT_CASES=${OVELIN_TEXT_CASES:-150}
}
