# Libraries for the device, cross-built from Debian's source packages. Each library has the same version as
# in the build root. The result is kept in ~/.cache/ovelin, in a folder whose name has a digest of the
# version, the compiler and the cache entries. An interrupted build continues where it stopped.

readonly crossbuild_toolchain_file=$repository/cmake/toolchains/mipsel-linux-gnu.cmake

# Builds the library unless it is there; sets crossbuild_installed, the folder it is installed in. PACKAGE is a
# binary package of the root; its source version is built. FETCH is crossbuild_fetch_package or
# crossbuild_fetch_original. PLACE is a cache entry with a path of this machine; the digest leaves it out.
# crossbuild_require TITLE FETCH SOURCE_PACKAGE PACKAGE [-DPLACE=...]... -- [-DENTRY=VALUE]...
crossbuild_require()
{
    local title=$1 fetch=$2 source_package=$3 version places=()
    # shellcheck disable=SC2016 # for dpkg-query
    version=$(root_run dpkg-query --show --showformat='${source:Version}' "$4")
    shift 4
    while [[ $1 != -- ]]; do
        places+=("$1")
        shift
    done
    shift
    local kind=$cache/box-${title,,}-$suite
    local home
    home=$kind-$(crossbuild_digest "$version" "$@")

    local lock use
    until crossbuild_hold; do
        take_lock "$kind.lock" "is building $title for the device"
        crossbuild_is_finished || crossbuild_make "$@"
        exec {lock}>&-
    done
    crossbuild_installed=$home/installed
}

# The functions below use the local variables of crossbuild_require.

# crossbuild_digest VERSION [-DENTRY=VALUE]...
crossbuild_digest()
{
    {
        echo "$1"
        root_run mipsel-linux-gnu-g++ -dumpfullversion
        printf '%s\n' "${@:2}"
    } | sha256sum | cut -c 1-12
}

# Takes a shared lock on the library's folder for the rest of this run, so that no other run removes it. It
# looks again with the lock held: another run may have removed the folder in between.
crossbuild_hold()
{
    crossbuild_is_finished || return
    { exec {use}<"$home"; } 2>/dev/null || return
    flock --shared "$use"
    crossbuild_is_finished
}

# The build folder is still there if an earlier run was ended while it removed its temporary files.
crossbuild_is_finished()
{
    [[ -f $home/finished && ! -d $home/build ]]
}

crossbuild_make()
{
    [[ -f $home/finished ]] || crossbuild_build "$@"
    rm --recursive --force "$home"/{source,unpacked,apt}
    rm --recursive --force "$home/build" # last: see crossbuild_is_finished
    crossbuild_remove_others
}

crossbuild_build()
{
    local started=$SECONDS
    say "Building $title $version for the device, once"
    mkdir --parents "$home"
    crossbuild_get_source
    crossbuild_configure "$@"
    crossbuild_compile
    crossbuild_install
    touch "$home/finished"
    say "$title for the device is ready after $((SECONDS - started)) seconds."
}

crossbuild_get_source()
{
    [[ ! -d $home/source ]] || return 0
    say "$title for the device: fetching the source package"
    rm --recursive --force "$home"/{apt,unpacked}
    mkdir --parents "$home"/apt/{lists,archives}/partial "$home/unpacked"
    if ! (cd "$home/unpacked" && "$fetch") >"$home/source.log" 2>&1; then
        cat "$home/source.log" >&2
        fail "The source package of $title $version could not be fetched; apt's message is above." \
            "Check the network. If the mirror has a newer version only, remove $root and run this again."
    fi
    mv --no-target-directory "$home/unpacked/$source_package"-*/ "$home/source"
}

# Fetches the source with Debian's changes.
crossbuild_fetch_package()
{
    crossbuild_apt_get update && crossbuild_apt_get source "$source_package=$version"
}

# Fetches the source without Debian's changes.
crossbuild_fetch_original()
{
    crossbuild_apt_get update && crossbuild_apt_get source --tar-only "$source_package=$version" \
        && mkdir "$source_package-original" \
        && root_run tar --extract --file="$(echo "$source_package"_*)" \
            --directory="$source_package-original"
}

# Runs apt-get with package lists of its own: those of the root are read-only and list no source packages.
crossbuild_apt_get()
{
    local apt=$home/apt settings
    sed -n 's/^deb /deb-src /p' "$root/etc/apt/sources.list" >"$apt/sources.list"
    mapfile -t settings < <(machine_apt_settings | sed 's/^/--option=/; s/ "/=/; s/";$//')
    root_run apt-get "${settings[@]}" \
        --option="Dir::Etc::SourceList=$apt/sources.list" \
        --option="Dir::Etc::SourceParts=/dev/null" \
        --option="Dir::State::Lists=$apt/lists" \
        --option="Dir::Cache=$apt" \
        --option="APT::Sandbox::User=" \
        --option="Acquire::Languages=none" \
        --option="quiet=2" \
        "$@"
}

crossbuild_configure()
{
    [[ ! -f $home/build/build.ninja ]] || return 0
    say "$title for the device: configuring"
    # Copies the toolchain file: the installed library refers to this file, and other clones use the library too.
    cp "$crossbuild_toolchain_file" "$home/toolchain.cmake"
    root_run cmake -G Ninja -S "$home/source" -B "$home/build" -Wno-dev \
        -DCMAKE_TOOLCHAIN_FILE="$home/toolchain.cmake" -DCMAKE_INSTALL_PREFIX="$home/installed" \
        "${places[@]}" "$@" >"$home/configure.log" 2>&1 \
        || crossbuild_failed "configured" configure.log
}

crossbuild_compile()
{
    root_run ninja -C "$home/build" -j "$(processors)" 2>&1 \
        | tee "$home/build.log" | crossbuild_show_progress \
        || crossbuild_failed "built" build.log
}

crossbuild_install()
{
    root_run cmake --install "$home/build" --strip >"$home/install.log" 2>&1 \
        || crossbuild_failed "installed" install.log
}

# crossbuild_failed WHAT LOG
crossbuild_failed()
{
    tail --lines=40 "$home/$2" >&2
    fail "$title for the device could not be $1; the end of $home/$2 is above." \
        "The files built so far are kept: another run continues from there."
}

# Reads ninja's "[done/all]" and prints a line for every 5 per cent.
crossbuild_show_progress()
{
    local line percent shown=0 step=5
    while IFS= read -r line; do
        [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]] || continue
        percent=$((BASH_REMATCH[1] * 100 / BASH_REMATCH[2]))
        ((percent >= shown + step)) || continue
        shown=$percent
        say "$title for the device: $percent %"
    done
}

# Removes the folders of other versions, unless a run uses them.
crossbuild_remove_others()
{
    local other lock
    for other in "$kind"-*/; do
        other=${other%/}
        [[ $other != "$home" && -d $other ]] || continue
        exec {lock}<"$other"
        ! flock --nonblock "$lock" || { rm --force "$other/finished" && rm --recursive --force "$other"; }
        exec {lock}<&-
    done
}
