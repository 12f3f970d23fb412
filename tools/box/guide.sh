# The programme guide, drawn under emulation and on the host.

# An evening of the embedded guide, whatever the day is.
readonly box_guide_time=2025-03-14T20:10+03:00

# Qt scales pictures and blends with the host's vector instructions and without any on the box, and the
# two round differently: by a step or two, in a few pixels of the posters. Text and shapes come out the
# same. A picture of 1280 x 720 has 921,600 pixels; a thousandth of them may differ.
readonly box_most_different_pixels=921
readonly box_largest_difference=2

box_compare_guide()
{
    local host_tree=$1 box_tree=$2 host=$box_results/host box=$box_results/box
    mkdir --parents "$box_results"
    say "Drawing the programme guide under emulation"
    box_draw_guide "$host" "$host_tree/examples/tvguide/tvguide"
    box_draw_guide "$box" "${box_emulator[@]}" "$box_tree/examples/tvguide/tvguide"

    diff --unified "$host.json" "$box.json" >&2 \
        || fail "The guide is laid out otherwise on the box than on the host; the difference is above."
    say "The guide's layout is the same on the box."

    local verdict
    verdict=$(inside "${box_emulator[@]}" "$box_tree/tools/box/probe/comparepictures" \
        "$host.png" "$box.png" "$box_most_different_pixels" "$box_largest_difference") \
        || fail "The guide looks otherwise on the box: ${verdict:-the pictures cannot be compared}." "Compare $host.png with $box.png."
    say "The guide's picture: $verdict."
}

# box_draw_guide OUTPUT COMMAND...
box_draw_guide()
{
    local output=$1
    shift
    inside "$@" --at "$box_guide_time" --render "$output.png" --describe "$output.json" >"$output.log"
}
