# The binary interface: what an application that was built against the library relies on. abi/ holds,
# for each platform, its description by libabigail and the list of exported symbols.

readonly abi_folder=$repository/abi
readonly abi_platforms=(x86_64 mipsel)

# Nothing but the library, with what the compiler knows of its types. Of Qt's types only the names
# matter here: libabigail leaves out what the public headers do not define, unless it comes from
# /usr/include.
readonly abi_entries=(
    -DCMAKE_BUILD_TYPE=RelWithDebInfo
    -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=OFF
    -DCMAKE_CXX_FLAGS=-fdebug-prefix-map=/usr/include=/system
    "-DOVELIN_BUILD_"{TESTS,EXAMPLES,PROBES}"=OFF"
    -DOVELIN_INSTALL=OFF
)

# Sets abi_library.
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

# Writes what there is now to a folder.
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
    # The last three are the linker's marks, which not every linker exports.
    inside nm --dynamic --defined-only --demangle --format=posix "$abi_library" \
        | sed 's/ [A-Za-z] [0-9a-f ]*$//' | grep --invert-match --line-regexp '__bss_start\|_edata\|_end' \
        | sort >"$symbols"
}

# Whether an application built against the recorded interface would load this library, and not work.
# abi_breaks PLATFORM FOLDER
abi_breaks()
{
    local recorded=$abi_folder/$1.xml status=0
    [[ -f $recorded ]] || return 1
    inside abidiff "$recorded" "$2/$1.xml" >&2 || status=$?
    # The bit is abidiff's for an incompatible change.
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
            || fail "An incompatible change takes a new SOVERSION (the project's major version) first."
    done
    for platform in "${abi_platforms[@]}"; do
        cp "$now/$platform".{xml,symbols} "$abi_folder"
    done
}

# Fails when an application built against the recorded interface could not use this library, and when
# the symbols are not the recorded ones. Added functions do no harm, but are to be recorded.
abi_check()
{
    local platform now=$repository/build/$toolchain/abi faults=0
    mkdir --parents "$now"
    for platform in "${abi_platforms[@]}"; do
        abi_describe "$platform" "$now"
        inside abidiff --no-added-syms "$abi_folder/$platform.xml" "$now/$platform.xml" >&2 || faults=1
        diff --unified=0 "$abi_folder/$platform.symbols" "$now/$platform.symbols" >&2 || faults=1
    done
    ((faults == 0)) || fail "The binary interface is not the recorded one; the difference is above." \
        "If it is meant: an incompatible change takes a new SOVERSION (the project's major version)." \
        "Then record it: ./dev abi --update"
}
