# The tool chain "host": what the machine itself has.

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

# Asks the Qt that CMake would find: a prefix named for CMake goes before the PATH.
host_qt_query()
{
    local qmake
    qmake=$(PATH=${CMAKE_PREFIX_PATH:+${CMAKE_PREFIX_PATH//:/\/bin:}/bin:}$PATH
        command -v qmake6 || command -v qmake) || return 0
    "$qmake" -query "$1" 2>/dev/null || true
}

host_has_cmake()
{
    version_at_least "$minimum_cmake" "$(host_cmake_version)"
}

host_has_ninja()
{
    command -v ninja >/dev/null
}

host_has_cpp20()
{
    "$(host_compiler)" -std=c++20 -fsyntax-only -x c++ - 2>/dev/null <<<'
        #include <compare>
        #include <concepts>
        #include <span>
        template<std::integral T> auto order(std::span<T> s) { return s.front() <=> s.back(); }'
}

host_has_qt()
{
    version_at_least "$minimum_qt" "$(host_qt_query QT_VERSION)"
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

# Asked at every run, so what is missing most often is looked at early and what takes long, last.
host_is_complete()
{
    host_has_cmake && host_has_ninja && host_has_qt && host_has_private_headers \
        && host_has_font && host_has_cpp20
}

# What the machine lacks, in words.
host_missing()
{
    {
        host_has_cmake || echo "CMake >= $minimum_cmake"
        host_has_ninja || echo "Ninja"
        host_has_cpp20 || echo "a C++20 compiler"
        host_has_qt || echo "Qt >= $minimum_qt"
        host_has_private_headers || echo "Qt's private headers"
        host_has_font || echo "the font DejaVu Sans"
    } | paste --serial --delimiters=, | sed 's/,/, /g'
}

# True where apt can bring everything that is missing.
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
    host_can_be_completed || fail "This machine lacks $(host_missing), and apt cannot bring it." \
        "Install it, or use the build root: OVELIN_TOOLCHAIN=root"
    host_install_packages
    host_is_complete || fail "After installing the packages this machine still lacks $(host_missing)." \
        "Use the build root: OVELIN_TOOLCHAIN=root"
}

# What a build tree depends on: another compiler or Qt must not continue it.
host_identity()
{
    echo "host, CMake $(host_cmake_version), Qt $(host_qt_query QT_VERSION)," \
        "$("$(host_compiler)" -dumpmachine) $("$(host_compiler)" -dumpfullversion -dumpversion)"
}
