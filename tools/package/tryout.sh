#!/bin/bash
# Installs the packages beside this script, builds programs with them, and removes them. mmdebstrap runs this
# script inside a new Debian, which it deletes afterwards.
set -euo pipefail
cd "$(dirname "$0")"

readonly card_says="card.png: 1 resource, allowed, text elided"

# Lists all files except those of the kernel, temporary files, logs, and the records of apt and dpkg.
list_files()
{
    find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path "$PWD" \
        -o -path /var/cache -o -path /var/lib/apt -o -path /var/lib/dpkg -o -path /var/log \) -prune \
        -o -print | sort
}

apt()
{
    DEBIAN_FRONTEND=noninteractive apt-get --quiet=2 --yes --no-install-recommends \
        -o Dpkg::Use-Pty=0 "$@" >apt.log 2>&1 || { cat apt.log; exit 1; }
}

# run_card PROGRAM
run_card()
{
    local said
    rm -f card.png
    said=$("$1")
    [[ $said == "$card_says" && -s card.png ]] \
        || { echo "$1 says \"$said\", not \"$card_says\", or draws nothing."; exit 1; }
}

build_by_cmake()
{
    { cmake -G Ninja -S card -B by-cmake && cmake --build by-cmake; } >cmake.log \
        || { cat cmake.log; exit 1; }
}

build_by_pkg_config()
{
    # shellcheck disable=SC2046 # the output is several options
    c++ -std=c++20 -fPIC card/main.cpp $(pkg-config --cflags --libs ovelin) -o by-pkg-config
}

check_documentation()
{
    [[ -s /usr/share/doc/libovelin-doc/html/index.html && -s /usr/share/qt6/doc/ovelin.qch ]] \
        || { echo "The documentation is not installed."; exit 1; }
}

list_files >before
apt install ./*.deb
check_documentation
build_by_cmake
run_card by-cmake/card
build_by_pkg_config
run_card ./by-pkg-config
apt purge libovelin1 libovelin-dev libovelin-doc
list_files >after

diff before after || { echo "After the removal these files are left over (>) or missing (<)."; exit 1; }
! dpkg --list '*ovelin*' 2>/dev/null | grep '^[^ud+|D]' || { echo "dpkg still knows packages of ovelin."; exit 1; }
echo "The packages were installed, used with CMake and with pkg-config, and removed; no file is left over."
