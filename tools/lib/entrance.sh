# Runs commands inside the build root. Programs and system files are those of the root. All other files,
# such as the user's folders, have the same paths as outside.

# A pattern of the folders that come from the root instead of the machine.
readonly root_folders='@(bin|sbin|lib|lib32|lib64|libx32|usr|etc|var)'

# Patterns of the environment variables that programs inside get. Compiler flags and search paths are not
# among them: they name files of the machine that the root does not have.
readonly root_variables=(
    TERM COLORTERM NO_COLOR CI USER LOGNAME TZ SOURCE_DATE_EPOCH
    DISPLAY WAYLAND_DISPLAY XAUTHORITY XDG_RUNTIME_DIR XDG_SESSION_TYPE
    http_proxy https_proxy no_proxy
    CMAKE_BUILD_PARALLEL_LEVEL 'CTEST_*' 'OVELIN_*' 'QT_LOGGING_*' 'QT_QPA_PLATFORM' 'QT_*SCALE*' 'QTEST_*'
)

root_shown=()

# Makes files visible inside under the same paths as outside.
# root_show PATH...
root_show()
{
    root_shown+=("$@")
}

# Sets root_entrance, the command that enters the root: bubblewrap, or tools/chroot-entrance where the system
# does not let bubblewrap run.
root_choose_entrance()
{
    local refusal
    if refusal=$(bwrap --dev-bind / / true 2>&1); then
        root_entrance=(bwrap --die-with-parent)
    elif is_administrator && unshare --mount true 2>/dev/null; then
        root_entrance=(unshare --mount --propagation private "$repository/tools/chroot-entrance")
    elif is_administrator; then
        fail "This system refuses namespaces even to root, as containers do by default ($refusal)." \
            "The build root needs them. Start the container with --cap-add SYS_ADMIN" \
            "--security-opt seccomp=unconfined --security-opt apparmor=unconfined, or use a system with" \
            "Qt >= $minimum_qt, such as Debian 13, where no build root is needed."
    else
        fail "This system refuses user namespaces to the user $(id --user --name) ($refusal)." \
            "The build root needs them. Have an administrator allow them: sysctl kernel.unprivileged_userns_clone=1," \
            "on Ubuntu kernel.apparmor_restrict_unprivileged_userns=0. Or run this as root."
    fi
}

# Runs a command inside the root in the current folder.
# root_run COMMAND...
root_run()
{
    root_lay_out
    root_describe_environment
    env --ignore-environment "${root_environment[@]}" \
        "${root_entrance[@]}" "${root_mounts[@]}" --chdir "$(pwd -P)" -- "$@"
}

# Sets root_mounts, bubblewrap's options for all mounts.
root_lay_out()
{
    root_mounts=()
    root_add_folders
    root_mounts+=(--dev-bind /var/tmp /var/tmp)
    root_add_shown
    root_add_names
    # Other runs use the same root: no command may change it.
    root_mounts+=(--remount-ro /usr --remount-ro /etc --remount-ro /var)
}

root_add_folders()
{
    local entry
    for entry in /* /.[!.]*; do
        # shellcheck disable=SC2053 # a pattern
        [[ ${entry#/} == $root_folders ]] || root_add "$entry" "$entry"
    done
    for entry in "$root"/*; do
        # shellcheck disable=SC2053 # a pattern
        [[ ${entry##*/} != $root_folders ]] || root_add "$entry" "/${entry##*/}"
    done
}

# root_add FROM TO
root_add()
{
    if [[ -L $1 ]]; then
        root_mounts+=(--symlink "$(readlink "$1")" "$2")
    elif [[ -e $1 ]]; then
        root_mounts+=(--dev-bind "$1" "$2")
    fi
}

# Mounts the repository, the working folder, the cache and the paths of root_show into the root, if they are in
# a system folder, such as a clone in /usr/src. A path at which the root has files of its own is not mounted.
root_add_shown()
{
    local path
    for path in "$repository" "$(pwd -P)" "$cache" "${root_shown[@]}"; do
        path=$(realpath "$path")
        # shellcheck disable=SC2053 # a pattern
        [[ $path == /$root_folders/* && $path != /var/tmp/* ]] || continue
        root_has "$path" || root_mounts+=(--dev-bind "$path" "$path")
    done
}

# True if the root has a file or folder at PATH that is not empty. An empty one may be the mount point that
# an earlier run made.
# root_has PATH
root_has()
{
    if [[ -d $root$1 ]]; then
        [[ -n $(ls --almost-all "$root$1") ]]
    else
        [[ -s $root$1 ]]
    fi
}

# Adds the machine's names of users, groups and hosts.
root_add_names()
{
    local file
    for file in /etc/{group,hosts,passwd,resolv.conf}; do
        [[ ! -r $file ]] || root_mounts+=(--ro-bind "$file" "$file")
    done
}

# Sets root_environment, the environment variables of commands inside the root. HOME is a folder of the cache: the
# user's font settings would change what is measured and drawn.
root_describe_environment()
{
    local home=$cache/home name pattern
    mkdir --parents "$home"
    root_environment=(
        "PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"
        "HOME=$home"
        "LC_ALL=C.UTF-8"
        "TZ=$(machine_time_zone)"
        "XAUTHORITY=$HOME/.Xauthority"
        "${compiler_cache[@]}"
    )
    while IFS= read -r name; do
        for pattern in "${root_variables[@]}"; do
            # shellcheck disable=SC2053 # a pattern
            [[ $name != $pattern ]] || root_environment+=("$name=${!name}")
        done
    done < <(compgen -e)
}

machine_time_zone()
{
    local zone
    zone=$(readlink --canonicalize /etc/localtime || true)
    if [[ $zone == */zoneinfo/* ]]; then
        echo "${zone#*/zoneinfo/}"
    elif [[ -s /etc/timezone ]]; then
        cat /etc/timezone
    else
        echo UTC
    fi
}
