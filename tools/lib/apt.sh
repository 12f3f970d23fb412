# Debian packages of the machine itself.

has_apt()
{
    command -v apt-get >/dev/null
}

is_administrator()
{
    ((EUID == 0))
}

# True if the user may install packages: as root or by sudo. Without a terminal sudo must not ask for a
# password.
may_administer()
{
    is_administrator && return
    command -v sudo >/dev/null || return 1
    [[ -t 0 ]] || sudo --non-interactive true 2>/dev/null
}

administer()
{
    if is_administrator; then
        "$@"
    else
        sudo "$@"
    fi
}

apt_has_lists()
{
    compgen -G '/var/lib/apt/lists/*_Packages*' >/dev/null
}

apt_update()
{
    say "Fetching the package lists: apt-get update"
    administer apt-get update --quiet=2 >&2
}

# Prints the version that apt would install, without its epoch; nothing if apt does not know PACKAGE.
# apt_candidate PACKAGE
apt_candidate()
{
    LC_ALL=C apt-cache policy "$1" 2>/dev/null | sed -n 's/^ *Candidate: \([0-9]*:\)\?\([0-9].*\)/\2/p'
}

apt_get_install()
{
    administer env DEBIAN_FRONTEND=noninteractive apt-get install --quiet --yes \
        --no-install-recommends "$@" </dev/null >&2
}

# Installs packages. If that fails, it fetches the package lists and tries again: they may be too old.
# apt_install WHAT_FOR PACKAGE...
apt_install()
{
    local purpose=$1
    shift
    has_apt || fail "Missing for $purpose: $*; this machine has no apt-get to install them with." \
        "Install them by your system's own means, then run this again."
    may_administer || fail "Missing for $purpose: $*; this user may not install them." \
        "Have an administrator run: apt-get install $*"

    say "Installing for $purpose: $*"
    apt_has_lists || apt_update || true
    apt_get_install "$@" || { apt_update && apt_get_install "$@"; } \
        || fail "apt-get could not install $*; its message is above." \
            "Correct the cause (the network, the package sources), then run this again."
}
