# The tool chain "root": a small Debian of its own in the cache, made once from the package list. The
# "workshop" is a larger one, with what only developing takes.
#
# A root is named after its kind, the suite and a digest of what it is made of, and carries that name
# only once it is complete. Who uses a root holds a shared lock on its folder, so that nobody removes it.

suite=${OVELIN_SUITE:-trixie}
HOME=${HOME:-$(getent passwd "$(id -u)" | cut -d: -f6)}
cache=$(realpath --canonicalize-missing "${OVELIN_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/ovelin}")
readonly suite cache

# Nobody reads manuals or other languages in a build root; without them it is smaller and made sooner.
# Unfinished, it is of no use, so dpkg need not see every file safe on the disk.
readonly root_recipe=(
    --variant=apt
    --dpkgopt=force-unsafe-io
    --dpkgopt='path-exclude=/usr/share/doc/*'
    --dpkgopt='path-exclude=/usr/share/info/*'
    --dpkgopt='path-exclude=/usr/share/locale/*'
    --dpkgopt='path-exclude=/usr/share/man/*'
)

# mmdebstrap works here: /tmp is too small on machines that keep it in memory.
readonly root_work_folder=/var/tmp

declare -rA root_size=([root]="1 GB" [workshop]="3 GB")

root_digest()
{
    { printf '%s\n' "${root_recipe[@]}"; root_package_names | sort; } | sha256sum | cut -c 1-12
}

# Sets root, and root_kind: "root" or "workshop".
root_choose()
{
    root_kind=$1
    root=$cache/$root_kind-$suite-$(root_digest)
}

root_choose root

root_name()
{
    case $root_kind in
    root) echo "build root" ;;
    workshop) echo "workshop" ;;
    esac
}

root_exists()
{
    [[ -d $root ]]
}

# The same list made anew may bring newer packages.
root_identity()
{
    echo "$root of $(stat --format=%Y "$root/etc/debian_chroot")"
}

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

# An ordinary user makes the root in a user namespace, with a range of user ids for the packages' files.
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

# Keeps the root for the rest of this run; fails when there is none. One that was removed while this
# run waited for the lock no longer stands under its name.
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
    exec {lock}>"$cache/$root_kind-$suite.lock"
    take_lock "$lock" "is making the $(root_name)"
    root_exists || root_build
    root_remove_others
    exec {lock}>&-
}

# Only the holder of the suite's lock gets here; what lies under the passing names is a killed run's.
root_build()
{
    local new=$cache/$root_kind-$suite.new started=$SECONDS
    root_delete "$new"
    say "Making the $(root_name) (Debian $suite, about ${root_size[$root_kind]}) in $cache: some minutes."

    # A process group of its own, so that all of it can be ended when this run is.
    set -o monitor
    root_bootstrap "$new" </dev/null &
    local maker=$!
    set +o monitor
    # shellcheck disable=SC2064 # the values of now: they are local
    trap "root_abandon $maker $(printf %q "$new")" EXIT
    wait "$maker" || fail "Making the $(root_name) failed; mmdebstrap's message is above." \
        "Look at the network, and for twice ${root_size[$root_kind]} free in $root_work_folder and once in $cache; then run this again."
    mv --no-target-directory "$new" "$root"
    trap - EXIT
    say "The $(root_name) is ready after $((SECONDS - started)) seconds."
}

# The files go through an archive, so that they belong to the user who makes the root.
root_bootstrap()
{
    local new=$1 setting settings=()
    while IFS= read -r setting; do
        settings+=(--aptopt="$setting")
    done < <(machine_apt_settings)

    mkdir "$new"
    TMPDIR=$root_work_folder mmdebstrap "${root_recipe[@]}" "${settings[@]}" \
        --include="$(root_package_names | paste --serial --delimiters=,)" "$suite" - \
        | tar --extract --directory="$new" --numeric-owner --exclude='./dev/*'

    # Shown by the shell's prompt.
    echo "ovelin-$suite" >"$new/etc/debian_chroot"
    # The machine's own are laid over these.
    touch "$new"/etc/{group,hosts,passwd,resolv.conf}
}

# How this machine reaches its package mirrors (a proxy, a mirror that lags) holds for the root as well.
machine_apt_settings()
{
    ! command -v apt-config >/dev/null \
        || apt-config dump | grep --extended-regexp '^Acquire::(https?::Proxy|Check-|Retries)' || true
}

# mmdebstrap removes its own files when told to end, and is given the time for it.
# root_abandon PROCESS_GROUP NEW_ROOT
root_abandon()
{
    local maker=$1 new=$2
    kill -TERM -- "-$maker" 2>/dev/null || true
    while kill -0 -- "-$maker" 2>/dev/null; do
        sleep 0.1
    done
    root_delete "$new"
    say "The unfinished $(root_name) is removed."
}

# Roots of the same suite made from another list. One that is in use goes at a later time.
root_remove_others()
{
    local other old=$cache/$root_kind-$suite.old lock
    root_delete "$old"
    for other in "$cache/$root_kind-$suite"-*/; do
        other=${other%/}
        [[ $other != "$root" && -d $other ]] || continue
        exec {lock}<"$other"
        if flock --nonblock "$lock"; then
            say "Removing the $(root_name) of another package list: $other"
            mv --no-target-directory "$other" "$old"
            root_delete "$old"
        fi
        exec {lock}<&-
    done
}

# Some packages bring folders that their owner may not write to.
root_delete()
{
    [[ -e $1 ]] || return 0
    is_administrator || chmod --recursive u+rwX "$1"
    rm --recursive --force --one-file-system "$1"
}
