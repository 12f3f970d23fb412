# help [COMMAND]
# List the commands, or tell about one, as ./dev COMMAND --help does.

commands=$repository/tools/commands

# The comment that a command's file begins with.
head_comment()
{
    sed -n '/^#/!q; s/^# \?//p' "$1"
}

tell_about()
{
    [[ $1 =~ ^[a-z]+$ && -f $commands/$1.sh ]] \
        || fail "There is no command \"$1\"." "\"./dev help\" lists the commands."
    head_comment "$commands/$1.sh" | sed '1s|^|./dev |'
}

list_commands()
{
    echo "./dev COMMAND finds or makes a tool chain, builds what is needed, and runs it."
    echo
    local file
    for file in "$commands"/*.sh; do
        head_comment "$file" | { read -r usage && read -r summary && printf '  %-26s %s\n' "$usage" "$summary"; }
    done
    cat <<'END'

Variables:
  OVELIN_TOOLCHAIN           host: this machine's own; root: a Debian made for it; workshop: a larger one.
                             By default the host where it has all that is needed or apt can bring it, else
                             the root.
  OVELIN_SUITE               the root's Debian: trixie, or another suite
  OVELIN_CACHE               where roots are kept: ~/.cache/ovelin
  CMAKE_BUILD_PARALLEL_LEVEL how many compilers and tests run at once: one per processor
END
}

if (($#)); then
    tell_about "$1"
else
    list_commands
fi
