# Which tool chain is used, and how to run a command of it.

# What was compiled once is taken from there, in another clone and another tool chain too: it is found
# by what the compiler, the options and the source files contain, not by where they stand.
readonly compiler_cache=(
    "CCACHE_DIR=$cache/compiled"
    "CCACHE_BASEDIR=$repository"
    CCACHE_NOHASHDIR=1
    CCACHE_COMPILERCHECK=content
    CCACHE_MAXSIZE=2G
)

# Sets toolchain: "host", the root's suite, or "workshop"; it names the folder of the build trees.
choose_toolchain()
{
    case ${OVELIN_TOOLCHAIN:-$(preferred_toolchain)} in
    host) use_host ;;
    root) use_root ;;
    workshop) use_workshop ;;
    *) fail "OVELIN_TOOLCHAIN is \"$OVELIN_TOOLCHAIN\", which names no tool chain." "Use host, root or workshop, or leave it out." ;;
    esac
}

# Who names a suite wants that suite's root. A root that is there already saves asking apt.
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

# For what takes more than a tool chain, and for what must come out the same for everybody.
use_workshop()
{
    [[ $suite == trixie ]] || fail "The workshop is made of Debian trixie." "Leave OVELIN_SUITE out."
    [[ ${OVELIN_TOOLCHAIN:-root} == @(root|workshop) ]] \
        || fail "This command needs more than the machine's own tool chain." "Leave OVELIN_TOOLCHAIN out."
    root_choose workshop
    root_require
    toolchain=workshop
    toolchain_identity=$(root_identity)
    say "Tool chain: workshop, Debian $suite in $root"
}

# Runs a command of the tool chain in the current folder. Qt wants UTF-8, which a bare machine's locale is not.
inside()
{
    if [[ $toolchain == host ]]; then
        env LC_ALL=C.UTF-8 "${compiler_cache[@]}" "$@"
    else
        root_run "$@"
    fi
}

# Programs that not every build needs: a machine that can build may lack them. The root has all.
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
