# What the box has beside the library: Debian's source packages of the very versions that the root has,
# cross-built. Each is kept beside the build root, in a folder named after what it is made of; a build
# that was interrupted goes on where it stopped, a finished one is not touched again.

readonly crossbuild_toolchain_file=$repository/cmake/toolchains/mipsel-linux-gnu.cmake

# Sets crossbuild_installed: the folder in which it is installed. The version is that of the root's
# PACKAGE. FETCH is crossbuild_fetch_package or crossbuild_fetch_original; PLACE says where the machine
# that builds keeps something.
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
        exec {lock}>"$kind.lock"
        take_lock "$lock" "is building $title for the box"
        crossbuild_is_finished || crossbuild_make "$@"
        exec {lock}>&-
    done
    crossbuild_installed=$home/installed
}

# The functions below find title, fetch, source_package, version, places, kind, home and use in the one above.

crossbuild_digest()
{
    {
        echo "$1"
        root_run mipsel-linux-gnu-g++ -dumpfullversion
        printf '%s\n' "${@:2}"
    } | sha256sum | cut -c 1-12
}

# Nobody removes it while this run uses it. One that was removed while this run waited for the lock is
# made again.
crossbuild_hold()
{
    crossbuild_is_finished || return
    { exec {use}<"$home"; } 2>/dev/null || return
    flock --shared "$use"
    crossbuild_is_finished
}

# A run that was ended while it tidied up leaves the build's folder.
crossbuild_is_finished()
{
    [[ -f $home/finished && ! -d $home/build ]]
}

crossbuild_make()
{
    [[ -f $home/finished ]] || crossbuild_build "$@"
    rm --recursive --force "$home"/{source,unpacked,apt}
    rm --recursive --force "$home/build"
    crossbuild_remove_others
}

crossbuild_build()
{
    local started=$SECONDS
    say "Building $title $version for the box, once"
    mkdir --parents "$home"
    crossbuild_get_source
    crossbuild_configure "$@"
    crossbuild_compile
    crossbuild_install
    touch "$home/finished"
    say "$title for the box is ready after $((SECONDS - started)) seconds."
}

crossbuild_get_source()
{
    [[ ! -d $home/source ]] || return 0
    say "$title for the box: fetching the source package"
    rm --recursive --force "$home"/{apt,unpacked}
    mkdir --parents "$home"/apt/{lists,archives}/partial "$home/unpacked"
    if ! (cd "$home/unpacked" && "$fetch") >"$home/source.log" 2>&1; then
        cat "$home/source.log" >&2
        fail "The source package of $title $version could not be fetched; apt's message is above." \
            "Look at the network. If the mirror has gone on to a newer version, remove $root and run this again."
    fi
    mv --no-target-directory "$home/unpacked/$source_package"-*/ "$home/source"
}

# With Debian's changes.
crossbuild_fetch_package()
{
    crossbuild_apt_get update && crossbuild_apt_get source "$source_package=$version"
}

# Without them, for what Debian only packs.
crossbuild_fetch_original()
{
    crossbuild_apt_get update && crossbuild_apt_get source --tar-only "$source_package=$version" \
        && mkdir "$source_package-original" \
        && root_run tar --extract --file="$(echo "$source_package"_*)" \
            --directory="$source_package-original"
}

# The root's own package lists know no sources, and are not written to.
crossbuild_apt_get()
{
    local apt=$home/apt setting settings
    sed -n 's/^deb /deb-src /p' "$root/etc/apt/sources.list" >"$apt/sources.list"
    settings=(
        -o "Dir::Etc::SourceList=$apt/sources.list"
        -o "Dir::Etc::SourceParts=/dev/null"
        -o "Dir::State::Lists=$apt/lists"
        -o "Dir::Cache=$apt"
        -o "APT::Sandbox::User="
        -o "Acquire::Languages=none"
        -o "quiet=2"
    )
    while IFS= read -r setting; do
        settings+=(-o "$setting")
    done < <(machine_apt_settings | sed 's/ "/=/; s/";$//')
    root_run apt-get "${settings[@]}" "$@"
}

crossbuild_configure()
{
    [[ ! -f $home/build/build.ninja ]] || return 0
    say "$title for the box: configuring"
    # A copy: whoever builds with this later need not have the folder that it was built from.
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
    fail "$title for the box could not be $1; the end of $home/$2 is above." \
        "What is done already is kept: running this again goes on from there."
}

# One line every twentieth, from ninja's "[done/all]".
crossbuild_show_progress()
{
    local line percent shown=0 step=5
    while IFS= read -r line; do
        [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]] || continue
        percent=$((BASH_REMATCH[1] * 100 / BASH_REMATCH[2]))
        ((percent >= shown + step)) || continue
        shown=$percent
        say "$title for the box: $percent %"
    done
}

# Those of other versions, unless a run uses them.
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
