# Builds with a compiler's sanitizers; sets tree.
# build_sanitized gcc|clang [TARGET...]
build_sanitized()
{
    local name=sanitize-$1 entries=()
    # Clang's sanitizers are a library that its programs do not find by themselves.
    [[ $1 != clang ]] || entries+=("-DCMAKE_BUILD_RPATH=$(clang_runtime_folder)")
    build_tree_as "$name" "$name" "${entries[@]}" -- "${@:2}"
}

clang_runtime_folder()
{
    dirname "$(inside clang++ -print-file-name=libclang_rt.asan-x86_64.so)"
}
