# demo [ARGS]
# Draw a programme guide into build/tvguide.png. ARGS are handed to examples/tvguide.
#
#   ./dev demo --guide FILE    draw a guide of yours, an XMLTV file
#   ./dev demo --window        open a window instead; its keys are the arrows, L for the log, and Escape
#   ./dev demo -h              list all arguments of the example

picture=$repository/build/tvguide.png

# True if an argument chooses the output of the example.
chooses_output()
{
    local argument
    for argument; do
        case $argument in
        --render | --render=* | --frames | --frames=* | --window | -h | --help | -v | --version) return 0 ;;
        esac
    done
    return 1
}

# Makes the folders of all files in the arguments visible inside the build root: a file may refer to others
# beside it.
show_files()
{
    local argument
    for argument; do
        argument=${argument#--*=}
        [[ ! -e $argument ]] || root_show "$(dirname "$(realpath "$argument")")" "$argument"
    done
}

choose_toolchain
build_tree release tvguide

show_files "$@"
arguments=()
chooses_output "$@" || arguments+=(--render "$picture")
for argument; do
    # The example does not know --window: it opens a window if no argument asks for a file.
    [[ $argument == --window ]] || arguments+=("$argument")
done
inside "$tree/examples/tvguide/tvguide" "${arguments[@]}"
