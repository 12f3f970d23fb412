# demo [ARGS]
# Draw a programme guide into build/tvguide.png; ARGS go to the example.
#
#   ./dev demo --guide FILE    your own guide, an XMLTV file
#   ./dev demo --window        in a window instead of a file; arrow keys, L, Escape
#   ./dev demo -h              all that the example can do

picture=$repository/build/tvguide.png

# The picture is for those who do not say what they want to see.
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

# Files may lie where the build root has folders of its own; what they refer to lies beside them.
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
    # The example needs no word for a window: it opens one when no file is asked for.
    [[ $argument == --window ]] || arguments+=("$argument")
done
inside "$tree/examples/tvguide/tvguide" "${arguments[@]}"
