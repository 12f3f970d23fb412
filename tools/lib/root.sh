# The tool chain "root": a small Debian in a folder of the cache, made once from the package list. The
# "workshop" is a larger one, which also has the tools for checks, measurements and packages.
#
# The name of a root's folder has its kind, the suite and a digest of its recipe and packages. An unfinished
# root has another name. A run holds a shared lock on the folder of its root, so that no other run removes it.

suite=${OVELIN_SUITE:-trixie}
HOME=${HOME:-$(getent passwd "$(id -u)" | cut -d: -f6)}
cache=$(realpath --canonicalize-missing "${OVELIN_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/ovelin}")
readonly suite cache

# The root leaves out manuals and translations. dpkg need not write each file to the disk at once: an
# unfinished root is thrown away.
readonly root_recipe=(
    --variant=apt
    --dpkgopt=force-unsafe-io
    --dpkgopt='path-exclude=/usr/share/doc/*'
    --dpkgopt='path-exclude=/usr/share/info/*'
    --dpkgopt='path-exclude=/usr/share/locale/*'
    --dpkgopt='path-exclude=/usr/share/man/*'
)

# mmdebstrap's temporary folder. A /tmp that is kept in memory would be too small.
readonly root_work_folder=/var/tmp

declare -rA root_size=([root]="1 GB" [workshop]="3 GB")
declare -rA root_title=([root]="build root" [workshop]="workshop")

root_digest()
{
    { printf '%s\n' "${root_recipe[@]}"; root_package_names | sort; } | sha256sum | cut -c 1-12
}

# Sets root, the folder of the root, and root_kind: "root" or "workshop".
# root_choose KIND
root_choose()
{
    root_kind=$1
    root=$cache/$root_kind-$suite-$(root_digest)
}

root_choose root

root_exists()
{
    [[ -d $root ]]
}

# Prints the root's folder and the time when it was made: a root that is made again may have newer packages.
root_identity()
{
    echo "$root of $(stat --format=%Y "$root/etc/debian_chroot")"
}

# Makes the chosen root unless it is there, and holds it for the rest of this run.
root_require()
{
    [[ $suite =~ ^[a-z]+$ ]] || fail "OVELIN_SUITE is \"$suite\", which names no Debian suite." "Use trixie or forky, or leave it out."
    root_require_tools
    until root_hold; do
        root_make
    done
}

root_require_tools()
{
    local packages=()
    command -v bwrap >/dev/null || packages+=(bubblewrap)
    if ! root_exists; then
        command -v mmdebstrap >/dev/null || packages+=(mmdebstrap debian-archive-keyring)
        is_administrator || command -v newuidmap >/dev/null || packages+=(uidmap)
    fi
    ((${#packages[@]} == 0)) || apt_install "the build root" "${packages[@]}"

    root_choose_entrance
    root_exists || is_administrator || root_require_user_ids
}

# Fails unless the user has a range of user ids. mmdebstrap makes the root in a user namespace, in which the
# files of the packages belong to these ids.
root_require_user_ids()
{
    local user file
    user=$(id --user --name)
    for file in /etc/subuid /etc/subgid; do
        grep --quiet --extended-regexp "^($user|$UID):" "$file" 2>/dev/null \
            || fail "The user $user has no range of ids in $file, which mmdebstrap needs to make the build root." \
                "Have an administrator run: usermod --add-subuids 100000-165535 --add-subgids 100000-165535 $user"
    done
}

# Takes a shared lock on the root for the rest of this run; fails if there is no root. It looks again with
# the lock held: another run may have removed the root in between.
root_hold()
{
    root_exists || return
    { exec {root_lock}<"$root"; } 2>/dev/null || return
    flock --shared "$root_lock"
    root_exists
}

root_make()
{
    mkdir --parents "$cache" || fail "The folder for the build root could not be made." \
        "Choose another: OVELIN_CACHE=/some/folder"
    local lock
    take_lock "$cache/$root_kind-$suite.lock" "is making the ${root_title[$root_kind]}"
    root_exists || root_build
    root_remove_others
    exec {lock}>&-
}

# The caller holds the lock, so a folder with the temporary name is from a run that was killed.
root_build()
{
    local new=$cache/$root_kind-$suite.new started=$SECONDS title=${root_title[$root_kind]}
    root_delete "$new"
    say "Making the $title (Debian $suite, about ${root_size[$root_kind]}) in $cache: some minutes."

    # With job control mmdebstrap and its children are one process group, which root_abandon can end.
    set -o monitor
    root_bootstrap "$new" </dev/null &
    local maker=$!
    set +o monitor
    # shellcheck disable=SC2064 # expanded now, because the variables are local
    trap "root_abandon $maker $(printf %q "$new")" EXIT
    wait "$maker" || fail "Making the $title failed; mmdebstrap's message is above." \
        "Check the network. Twice ${root_size[$root_kind]} must be free in $root_work_folder and once in $cache. Then run this again."
    mv --no-target-directory "$new" "$root"
    trap - EXIT
    say "The $title is ready after $((SECONDS - started)) seconds."
}

# Makes a root in a new folder. tar unpacks the files, so that they belong to the user.
# root_bootstrap FOLDER
root_bootstrap()
{
    local new=$1 settings
    mapfile -t settings < <(machine_apt_settings | sed 's/^/--aptopt=/')

    mkdir "$new"
    TMPDIR=$root_work_folder mmdebstrap "${root_recipe[@]}" "${settings[@]}" \
        --include="$(root_package_names | paste --serial --delimiters=,)" "$suite" - \
        | tar --extract --directory="$new" --numeric-owner --exclude='./dev/*'

    # The shell's prompt shows this name.
    echo "ovelin-$suite" >"$new/etc/debian_chroot"
    # The machine's files are mounted on these: see root_add_names.
    touch "$new"/etc/{group,hosts,passwd,resolv.conf}
}

# Prints the machine's settings for package mirrors, such as a proxy, in the format of apt-config.
machine_apt_settings()
{
    ! command -v apt-config >/dev/null \
        || apt-config dump | grep --extended-regexp '^Acquire::(https?::Proxy|Check-|Retries)' || true
}

# Ends mmdebstrap and waits until it has removed its temporary files.
# root_abandon PROCESS_GROUP NEW_ROOT
root_abandon()
{
    local maker=$1 new=$2
    kill -TERM -- "-$maker" 2>/dev/null || true
    while kill -0 -- "-$maker" 2>/dev/null; do
        sleep 0.1
    done
    root_delete "$new"
    say "The unfinished ${root_title[$root_kind]} is removed."
}

# Removes the roots of the same kind and suite that have another digest, unless a run uses them.
root_remove_others()
{
    local other old=$cache/$root_kind-$suite.old lock
    root_delete "$old"
    for other in "$cache/$root_kind-$suite"-*/; do
        other=${other%/}
        [[ $other != "$root" && -d $other ]] || continue
        exec {lock}<"$other"
        if flock --nonblock "$lock"; then
            say "Removing the ${root_title[$root_kind]} of another package list: $other"
            mv --no-target-directory "$other" "$old"
            root_delete "$old"
        fi
        exec {lock}<&-
    done
}

# Deletes a root. Makes its folders writable first: some packages have folders that their owner may not
# write to.
# root_delete FOLDER
root_delete()
{
    [[ -e $1 ]] || return 0
    is_administrator || chmod --recursive u+rwX "$1"
    rm --recursive --force --one-file-system "$1"
}
