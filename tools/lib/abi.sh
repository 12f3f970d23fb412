# The binary interface: all that an application which was built against the library relies on. For each
# platform abi/ holds a description by libabigail and a list of the exported symbols.

readonly abi_folder=$repository/abi
readonly abi_platforms=(x86_64 mipsel)

# Builds only the library, with debugging information, which describes its types. The description shall
# leave out the insides of Qt's types. libabigail leaves out types that the public headers do not define,
# but keeps those of /usr/include; so the path of Qt's headers is replaced.
readonly abi_entries=(
    -DCMAKE_BUILD_TYPE=RelWithDebInfo
    -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=OFF
    -DCMAKE_CXX_FLAGS=-fdebug-prefix-map=/usr/include=/system
    "-DOVELIN_BUILD_"{TESTS,EXAMPLES,PROBES}"=OFF"
    -DOVELIN_INSTALL=OFF
)

# Builds the library; sets abi_library, its path.
# abi_build PLATFORM
abi_build()
{
    case $1 in
    x86_64) build_tree_as abi-x86_64 release "${abi_entries[@]}" -- ovelin ;;
    mipsel)
        # shellcheck source=tools/box/qt.sh
        source "$repository/tools/box/qt.sh"
        box_require_qt
        build_tree_as abi-mipsel box "${abi_entries[@]}" "-DOVELIN_BOX_QT=$box_qt" -- ovelin
        ;;
    esac
    abi_library=$tree/src/libovelin.so
}

# Writes the present interface to FOLDER.
# abi_describe PLATFORM FOLDER
abi_describe()
{
    local description=$2/$1.xml symbols=$2/$1.symbols
    abi_build "$1"
    rm --force "$description"
    inside abidw --headers-dir "$repository/include" --drop-private-types --drop-undefined-syms \
        --exported-interfaces-only --type-id-style hash --no-corpus-path --no-comp-dir-path --no-show-locs \
        --no-parameter-names --no-elf-needed --out-file "$description" "$abi_library"
    [[ -s $description ]] || fail "The interface for $1 was not described; see above."
    # Not every linker exports its marks __bss_start, _edata and _end.
    inside nm --dynamic --defined-only --demangle --format=posix "$abi_library" \
        | sed 's/ [A-Za-z] [0-9a-f ]*$//' | grep --invert-match --line-regexp '__bss_start\|_edata\|_end' \
        | sort >"$symbols"
}

# True if the interface in FOLDER is incompatible with the recorded one although the SONAME is the same: an
# application would load the library and fail.
# abi_breaks PLATFORM FOLDER
abi_breaks()
{
    local recorded=$abi_folder/$1.xml status=0
    [[ -f $recorded ]] || return 1
    inside abidiff "$recorded" "$2/$1.xml" >&2 || status=$?
    # abidiff sets this bit for an incompatible change.
    ((status & 8)) && [[ $(abi_soname "$recorded") == "$(abi_soname "$2/$1.xml")" ]]
}

abi_soname()
{
    sed -n "s/.* soname='\([^']*\)'.*/\1/p" "$1" | head --lines=1
}

abi_record()
{
    local platform now=$repository/build/$toolchain/abi
    mkdir --parents "$abi_folder" "$now"
    for platform in "${abi_platforms[@]}"; do
        abi_describe "$platform" "$now"
        ! abi_breaks "$platform" "$now" \
            || fail "An incompatible change needs a new SOVERSION (the project's major version) first."
    done
    for platform in "${abi_platforms[@]}"; do
        cp "$now/$platform".{xml,symbols} "$abi_folder"
    done
}

# Fails when the interface is incompatible with the recorded one, and when the lists of symbols differ.
# Added functions are compatible, but must be recorded.
abi_check()
{
    local platform now=$repository/build/$toolchain/abi faults=0
    mkdir --parents "$now"
    for platform in "${abi_platforms[@]}"; do
        abi_describe "$platform" "$now"
        inside abidiff --no-added-syms "$abi_folder/$platform.xml" "$now/$platform.xml" >&2 || faults=1
        diff --unified=0 "$abi_folder/$platform.symbols" "$now/$platform.symbols" >&2 || faults=1
    done
    ((faults == 0)) || fail "The binary interface differs from the recorded one; the difference is above." \
        "If the change is intended: an incompatible change needs a new SOVERSION (the project's major version)." \
        "Then record the interface: ./dev abi --update"
}
