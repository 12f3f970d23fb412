# package
# Make the source archive and the Debian packages, and try the packages out in a new Debian.
#
# build/package gets ovelin-VERSION.tar.xz, libovelin1, libovelin-dev and libovelin-doc. An error that
# Lintian finds fails the command. The trial installs the packages in a new Debian, builds a program with
# CMake and with pkg-config, removes the packages, and checks that no file is left.

packages=$repository/build/package
work=$packages/work

project_version()
{
    sed -n 's/^    VERSION \([0-9.]*\)$/\1/p' "$repository/CMakeLists.txt"
}

# Packs all files that git knows or would add. The same files and the same last commit give the same archive.
make_source_archive()
{
    (cd "$repository" && git ls-files --cached --others --exclude-standard -z) >"$work/files" \
        || fail "git could not list the files of $repository." "./dev package needs a clone, not an unpacked archive."
    tar --create --xz --file "$packages/$name.tar.xz" --directory "$repository" \
        --null --verbatim-files-from --files-from "$work/files" --transform "s|^|$name/|" \
        --sort=name --owner=0 --group=0 --numeric-owner --mtime="@$(git -C "$repository" log -1 --format=%ct)"
}

# Debian's tools expect the archive under another name and debian/ at the top of the source. The
# build dependencies are not checked: the workshop has the programs, but not the package build-essential.
make_debian_packages()
{
    cp "$packages/$name.tar.xz" "$work/ovelin_$version.orig.tar.xz"
    tar --extract --file "$packages/$name.tar.xz" --directory "$work"
    cp --recursive "$work/$name/packaging/debian" "$work/$name/debian"
    (cd "$work/$name" && inside env CMAKE_CXX_COMPILER_LAUNCHER=ccache "DEB_BUILD_OPTIONS=parallel=$(processors)" \
        dpkg-buildpackage --no-check-builddeps --unsigned-source --unsigned-changes) >"$packages/build.log" 2>&1 \
        || fail "The Debian packages could not be built." "The messages are in $(short_path "$packages/build.log")"
    cp "$work"/*.deb "$packages"
}

check_debian_packages()
{
    # The suppressed tag is about an upload to Debian itself.
    inside lintian --allow-root --fail-on error --suppress-tags initial-upload-closes-no-bugs \
        "$work"/*.changes >&2 \
        || fail "Lintian finds errors in the packages; they are above."
}

require_mmdebstrap()
{
    command -v mmdebstrap >/dev/null \
        || apt_install "trying the packages out" mmdebstrap debian-archive-keyring
    is_administrator || root_require_user_ids
}

# The new Debian is made with all that the packages depend on. So a file that is left over when the packages are
# removed came from the packages.
try_debian_packages()
{
    local settings tryout=$work/tryout
    mapfile -t settings < <(machine_apt_settings | sed 's/^/--aptopt=/')

    mkdir "$tryout"
    cp --recursive "$repository/tools/package/tryout.sh" "$repository/examples/card" "$tryout"
    cp "$packages"/libovelin{1,-dev,-doc}_*.deb "$tryout"
    # shellcheck disable=SC2016 # mmdebstrap's shell expands it
    TMPDIR=$root_work_folder mmdebstrap --quiet --variant=apt --format=null \
        --dpkgopt=force-unsafe-io "${settings[@]}" \
        --include=cmake,fonts-dejavu-core,g++,ninja-build,pkgconf,qt6-base-dev \
        --customize-hook="copy-in '$tryout' /opt" \
        --customize-hook='chroot "$1" bash /opt/tryout/tryout.sh' \
        "$suite" - >&2 </dev/null \
        || fail "The packages do not work in a new Debian; the messages are above."
}

(($# == 0)) || fail "./dev package takes no arguments."
use_workshop
require_mmdebstrap
version=$(project_version)
name=ovelin-$version

rm --recursive --force "$packages"
mkdir --parents "$work"
say "Making the source archive"
make_source_archive
say "Making the Debian packages"
make_debian_packages
say "Checking the packages with Lintian"
check_debian_packages
say "Trying the packages out in a new Debian"
try_debian_packages
rm --recursive --force "$work"
say "The packages are in $(short_path "$packages")."
