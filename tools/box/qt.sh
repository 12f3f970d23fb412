# Qt for the box: Debian's source package of the very version that the root has, cross-built with the
# root's Qt as its tools. Kept beside the build root; a build that was interrupted goes on where it
# stopped.

# Core, Gui and Test with what the library, the tests and the example use; fonts, pictures and patterns
# by the copies that Qt brings, so that nothing else is needed on the box.
readonly box_qt_options=(
    -DCMAKE_BUILD_TYPE=Release
    -DQT_BUILD_TESTS=OFF
    -DQT_BUILD_EXAMPLES=OFF
    -DINPUT_freetype=qt
    -DINPUT_harfbuzz=qt
    -DINPUT_libpng=qt
    -DINPUT_pcre=qt
    -DINPUT_opengl=no
    -DFEATURE_system_zlib=OFF
    -DFEATURE_linuxfb=ON
    -DFEATURE_testlib=ON
    # pkg-config would find libraries of the machine that builds
    "-DFEATURE_"{pkg_config,libudev,mtdev}"=OFF"
    "-DFEATURE_"{network,sql,widgets,dbus,xml,concurrent,printsupport,pdf}"=OFF"
    "-DFEATURE_"{glib,icu,xcb,fontconfig,vulkan}"=OFF"
    "-DFEATURE_"{gif,ico,jpeg,qmake}"=OFF"
)

readonly box_toolchain_file=$repository/cmake/toolchains/mipsel-linux-gnu.cmake

# Sets box_qt: the folder in which Qt for the box is installed.
box_require_qt()
{
    # shellcheck disable=SC2016 # for dpkg-query
    box_qt_version=$(root_run dpkg-query --show --showformat='${source:Version}' qt6-base-dev)
    box_qt_home=$cache/box-qt-$suite-$(box_qt_digest)
    box_qt=$box_qt_home/installed
    if ! box_qt_is_finished; then
        local lock
        exec {lock}>"$cache/box-qt-$suite.lock"
        take_lock "$lock" "is building Qt for the box"
        box_qt_is_finished || box_qt_make
        exec {lock}>&-
    fi
    # Nobody removes it while this run uses it.
    exec {box_qt_lock}<"$box_qt_home"
    flock --shared "$box_qt_lock"
}

box_qt_digest()
{
    {
        echo "$box_qt_version"
        root_run mipsel-linux-gnu-g++ -dumpfullversion
        printf '%s\n' "${box_qt_options[@]}"
    } | sha256sum | cut -c 1-12
}

box_qt_is_finished()
{
    [[ -f $box_qt_home/finished ]]
}

box_qt_make()
{
    local started=$SECONDS
    say "Building Qt $box_qt_version for the box, once: seven minutes on two processors."
    mkdir --parents "$box_qt_home"
    box_qt_get_source
    box_qt_configure
    box_qt_compile
    box_qt_install
    touch "$box_qt_home/finished"
    rm --recursive --force "$box_qt_home"/{build,source,apt}
    box_qt_remove_others
    say "Qt for the box is ready after $(((SECONDS - started) / 60)) minutes."
}

# The root's own package lists know no sources, and are not written to.
box_qt_get_source()
{
    [[ ! -d $box_qt_home/source ]] || return 0
    say "Qt for the box: fetching the source package"
    local apt=$box_qt_home/apt setting settings
    rm --recursive --force "$apt"
    mkdir --parents "$apt"/{lists,archives}/partial "$apt/source"
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

    if ! (cd "$apt/source" \
        && root_run apt-get "${settings[@]}" update \
        && root_run apt-get "${settings[@]}" source "qt6-base=$box_qt_version") >"$box_qt_home/source.log" 2>&1; then
        cat "$box_qt_home/source.log" >&2
        fail "The source package of Qt $box_qt_version could not be fetched; apt's message is above." \
            "Look at the network. If the mirror has gone on to a newer version, remove $root and run this again."
    fi
    mv --no-target-directory "$apt"/source/qt6-base-*/ "$box_qt_home/source"
}

box_qt_configure()
{
    [[ ! -f $box_qt_home/build/build.ninja ]] || return 0
    say "Qt for the box: configuring"
    root_run cmake -G Ninja -S "$box_qt_home/source" -B "$box_qt_home/build" -Wno-dev \
        -DCMAKE_TOOLCHAIN_FILE="$box_toolchain_file" -DCMAKE_INSTALL_PREFIX="$box_qt" \
        -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="$(box_host_cmake_folder)" \
        "${box_qt_options[@]}" >"$box_qt_home/configure.log" 2>&1 \
        || box_qt_failed "configured" configure.log
}

# Where Debian keeps CMake's files depends on the processor of the machine that builds.
box_host_cmake_folder()
{
    local folder
    folder=$(root_run qmake6 -query QT_INSTALL_LIBS)
    echo "$folder/cmake"
}

box_qt_compile()
{
    root_run ninja -C "$box_qt_home/build" -j "$(processors)" 2>&1 \
        | tee "$box_qt_home/build.log" | box_show_progress "Qt for the box" \
        || box_qt_failed "built" build.log
}

box_qt_install()
{
    root_run cmake --install "$box_qt_home/build" --strip >"$box_qt_home/install.log" 2>&1 \
        || box_qt_failed "installed" install.log
}

# box_qt_failed WHAT LOG
box_qt_failed()
{
    tail --lines=40 "$box_qt_home/$2" >&2
    fail "Qt for the box could not be $1; the end of $box_qt_home/$2 is above." \
        "What is done already is kept: running this again goes on from there."
}

# One line every twentieth, from ninja's "[done/all]".
# box_show_progress WHAT
box_show_progress()
{
    local line percent shown=0 step=5
    while IFS= read -r line; do
        [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]] || continue
        percent=$((BASH_REMATCH[1] * 100 / BASH_REMATCH[2]))
        ((percent >= shown + step)) || continue
        shown=$percent
        say "$1: $percent %"
    done
}

# Those of other versions, unless a run uses them.
box_qt_remove_others()
{
    local other lock
    for other in "$cache/box-qt-$suite"-*/; do
        other=${other%/}
        [[ $other != "$box_qt_home" && -d $other ]] || continue
        exec {lock}<"$other"
        ! flock --nonblock "$lock" || rm --recursive --force "$other"
        exec {lock}<&-
    done
}
