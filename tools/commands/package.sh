# package
# Make the source archive and the Debian packages, and try them out in a fresh Debian.
#
# build/package gets ovelin-VERSION.tar.xz, libovelin1, libovelin-dev and libovelin-doc. Lintian finds
# no error in them; then they are installed in a Debian made for the purpose, a program is built with
# them by CMake and by pkg-config, and they are removed again without a trace.

packages=$repository/build/package
work=$packages/work

project_version()
{
    sed -n 's/^    VERSION \([0-9.]*\)$/\1/p' "$repository/CMakeLists.txt"
}

# All that git has, or would take; the same content gives the same archive.
make_source_archive()
{
    (cd "$repository" && git ls-files --cached --others --exclude-standard -z) >"$work/files" \
        || fail "git could not list the files of $repository." "./dev package needs a clone, not an unpacked archive."
    tar --create --xz --file "$packages/$name.tar.xz" --directory "$repository" \
        --null --verbatim-files-from --files-from "$work/files" --transform "s|^|$name/|" \
        --sort=name --owner=0 --group=0 --numeric-owner --mtime="@$(git -C "$repository" log -1 --format=%ct)"
}

# Debian's tools want the archive under their own name, and debian/ at the top of the source. The
# workshop has all that the build needs, but for the package that Debian takes for granted by its name.
make_debian_packages()
{
    cp "$packages/$name.tar.xz" "$work/ovelin_$version.orig.tar.xz"
    tar --extract --file "$packages/$name.tar.xz" --directory "$work"
    cp --recursive "$work/$name/packaging/debian" "$work/$name/debian"
    (cd "$work/$name" && inside env CMAKE_CXX_COMPILER_LAUNCHER=ccache "DEB_BUILD_OPTIONS=parallel=$(processors)" \
        dpkg-buildpackage --no-check-builddeps --unsigned-source --unsigned-changes) >"$packages/build.log" 2>&1 \
        || fail "The Debian packages could not be built." "What was said is in $(short_path "$packages/build.log")"
    cp "$work"/*.deb "$packages"
}

check_debian_packages()
{
    # A first upload to Debian itself would have to close a bug there.
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

# What the packages themselves need is there before: what they leave behind is theirs alone.
try_debian_packages()
{
    local setting settings=() tryout=$work/tryout
    while IFS= read -r setting; do
        settings+=(--aptopt="$setting")
    done < <(machine_apt_settings)

    mkdir "$tryout"
    cp --recursive "$repository/tools/package/tryout.sh" "$repository/examples/card" "$tryout"
    cp "$packages"/libovelin{1,-dev,-doc}_*.deb "$tryout"
    # shellcheck disable=SC2016 # mmdebstrap gives the hook its argument
    TMPDIR=$root_work_folder mmdebstrap --quiet --variant=apt --format=null \
        --dpkgopt=force-unsafe-io "${settings[@]}" \
        --include=cmake,fonts-dejavu-core,g++,ninja-build,pkgconf,qt6-base-dev \
        --customize-hook="copy-in '$tryout' /opt" \
        --customize-hook='chroot "$1" bash /opt/tryout/tryout.sh' \
        "$suite" - >&2 </dev/null \
        || fail "The packages could not be used in a fresh Debian; what went wrong is above."
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
say "Looking for what Debian would refuse"
check_debian_packages
say "Trying them out in a fresh Debian"
try_debian_packages
rm --recursive --force "$work"
say "The packages are in $(short_path "$packages")."
