# The choice of the tool chain, and running commands in it.

# Settings of ccache. All clones and tool chains share one cache: ccache compares the contents of the
# compiler and the sources, not their paths.
readonly compiler_cache=(
    "CCACHE_DIR=$cache/compiled"
    "CCACHE_BASEDIR=$repository"
    CCACHE_NOHASHDIR=1
    CCACHE_COMPILERCHECK=content
    CCACHE_MAXSIZE=2G
)

# choose_toolchain, use_host, use_root and use_workshop set toolchain, the name of the folder of the build trees
# ("host", "workshop" or the suite), and toolchain_identity, which changes with the compiler or Qt.

choose_toolchain()
{
    case ${OVELIN_TOOLCHAIN:-$(preferred_toolchain)} in
    host) use_host ;;
    root) use_root ;;
    workshop) use_workshop ;;
    *) fail "OVELIN_TOOLCHAIN is \"$OVELIN_TOOLCHAIN\", which names no tool chain." "Use host, root or workshop, or leave it out." ;;
    esac
}

# Prints "host" if OVELIN_SUITE is not set and the host is complete. Prints "host" as well if apt can complete
# the host and there is no root yet. Prints "root" otherwise: with a root, apt need not install anything.
preferred_toolchain()
{
    if [[ -z ${OVELIN_SUITE:-} ]] && { host_is_complete || { ! root_exists && host_can_be_completed; }; }; then
        echo host
    else
        echo root
    fi
}

use_host()
{
    host_require
    toolchain=host
    toolchain_identity=$(host_identity)
    say "Tool chain: $toolchain_identity"
}

use_root()
{
    root_require
    toolchain=$suite
    toolchain_identity=$(root_identity)
    say "Tool chain: root, Debian $suite in $root"
}

# For commands that need more than a compiler and Qt, and for results that must be the same on every machine.
use_workshop()
{
    [[ $suite == trixie ]] || fail "The workshop is made of Debian trixie." "Leave OVELIN_SUITE out."
    [[ ${OVELIN_TOOLCHAIN:-root} == @(root|workshop) ]] \
        || fail "This command runs only in the workshop, not on the host." "Leave OVELIN_TOOLCHAIN out."
    root_choose workshop
    root_require
    toolchain=workshop
    toolchain_identity=$(root_identity)
    say "Tool chain: workshop, Debian $suite in $root"
}

# Runs a command of the tool chain in the current folder. Qt needs a UTF-8 locale, which the machine may lack.
# inside COMMAND...
inside()
{
    if [[ $toolchain == host ]]; then
        env LC_ALL=C.UTF-8 "${compiler_cache[@]}" "$@"
    else
        root_run "$@"
    fi
}

# Installs programs that a complete host may lack, because not every command needs them. The root has them.
# require_programs PROGRAM...
require_programs()
{
    [[ $toolchain == host ]] || return 0
    local program
    for program; do
        command -v "$program" >/dev/null && continue
        host_can_be_completed && host_install_packages
        command -v "$program" >/dev/null || fail "This machine lacks $program." \
            "Install it, or use the build root: OVELIN_TOOLCHAIN=root"
    done
}
