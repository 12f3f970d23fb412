# help [COMMAND]
# List the commands, or describe one, as ./dev COMMAND --help does.

commands=$repository/tools/commands

# Prints the comment at the top of a command's file.
head_comment()
{
    sed -n '/^#/!q; s/^# \?//p' "$1"
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
  OVELIN_TOOLCHAIN           host: this machine's compiler and Qt; root: a Debian in a folder; workshop: a
                             larger one. Default: the host if it has all that is needed, or if apt can
                             install it and there is no root yet; otherwise the root.
  OVELIN_SUITE               the Debian suite of the root; default: trixie. If it is set, the default of
                             OVELIN_TOOLCHAIN is the root.
  OVELIN_CACHE               the folder of the roots; default: ~/.cache/ovelin
  CMAKE_BUILD_PARALLEL_LEVEL how many compilers and tests run at once; default: one per processor
END
}

if (($#)); then
    require_command "$1"
    head_comment "$commands/$1.sh" | sed '1s|^|./dev |'
else
    list_commands
fi
