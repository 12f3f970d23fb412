# The tool chain "host": the machine's own compiler and Qt.

readonly minimum_cmake=3.24
readonly minimum_qt=6.5

# version_at_least MINIMUM VERSION
version_at_least()
{
    [[ -n $2 ]] && printf '%s\n' "$1" "$2" | sort --version-sort --check=quiet
}

host_cmake_version()
{
    cmake --version 2>/dev/null | sed -n '1s/[^0-9]*//p'
}

host_compiler()
{
    echo "${CXX:-c++}"
}

# Prints a property of the Qt that CMake would find. qmake is looked for in CMAKE_PREFIX_PATH first, as CMake does,
# and then in PATH.
# host_qt_query PROPERTY
host_qt_query()
{
    local qmake
    qmake=$(PATH=${CMAKE_PREFIX_PATH:+${CMAKE_PREFIX_PATH//:/\/bin:}/bin:}$PATH
        command -v qmake6 || command -v qmake) || return 0
    "$qmake" -query "$1" 2>/dev/null || true
}

host_has_cpp20()
{
    "$(host_compiler)" -std=c++20 -fsyntax-only -x c++ - 2>/dev/null <<<'
        #include <compare>
        #include <concepts>
        #include <span>
        template<std::integral T> auto order(std::span<T> s) { return s.front() <=> s.back(); }'
}

host_has_private_headers()
{
    local headers version
    headers=$(host_qt_query QT_INSTALL_HEADERS)
    version=$(host_qt_query QT_VERSION)
    [[ -d $headers/QtCore/$version/QtCore/private && -d $headers/QtGui/$version/QtGui/private ]]
}

host_has_font()
{
    if command -v fc-list >/dev/null; then
        [[ -n $(fc-list 'DejaVu Sans') ]]
    else
        [[ -n $(find -L /usr/share/fonts -name DejaVuSans.ttf -print -quit 2>/dev/null) ]]
    fi
}

# Prints what the machine lacks, separated by commas.
host_missing()
{
    {
        version_at_least "$minimum_cmake" "$(host_cmake_version)" || echo "CMake >= $minimum_cmake"
        command -v ninja >/dev/null || echo "Ninja"
        host_has_cpp20 || echo "a C++20 compiler"
        version_at_least "$minimum_qt" "$(host_qt_query QT_VERSION)" || echo "Qt >= $minimum_qt"
        host_has_private_headers || echo "Qt's private headers"
        host_has_font || echo "the font DejaVu Sans"
    } | paste --serial --delimiters=, | sed 's/,/, /g'
}

host_is_complete()
{
    [[ -z $(host_missing) ]]
}

# True if the user may install packages with apt, and apt has a Qt that is new enough.
host_can_be_completed()
{
    has_apt && may_administer || return 1
    apt_has_lists || apt_update || return 1
    version_at_least "$minimum_qt" "$(apt_candidate qt6-base-dev)"
}

host_install_packages()
{
    local packages
    mapfile -t packages < <(package_names)
    apt_install "the tool chain of this machine" "${packages[@]}"
}

host_require()
{
    host_is_complete && return
    host_can_be_completed || fail "This machine lacks $(host_missing), and apt cannot install it." \
        "Install it by other means, or use the build root: OVELIN_TOOLCHAIN=root"
    host_install_packages
    host_is_complete || fail "After installing the packages this machine still lacks $(host_missing)." \
        "Use the build root: OVELIN_TOOLCHAIN=root"
}

# Describes CMake, Qt and the compiler. When one of them changes, the build trees are configured anew.
host_identity()
{
    echo "host, CMake $(host_cmake_version), Qt $(host_qt_query QT_VERSION)," \
        "$("$(host_compiler)" -dumpmachine) $("$(host_compiler)" -dumpfullversion -dumpversion)"
}
