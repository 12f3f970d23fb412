# Compares the programme guide that is drawn under emulation with the one that the host draws.

# A time at which the embedded guide has programmes.
readonly box_guide_time=2025-03-14T20:10+03:00

# On the host Qt scales and blends pictures with vector instructions, on the device without. The two round
# differently in a few pixels of the posters; texts and shapes are equal. One in a thousand of the
# 1280 x 720 pixels may differ, by 2 of 255 in a channel. Higher limits would hide a fault in a small text.
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
        || fail "The guide's layout on the device differs from that on the host; the difference is above."
    say "The guide's layout is the same on the device."

    local verdict
    verdict=$(inside "${box_emulator[@]}" "$box_tree/tools/box/probe/comparepictures" \
        "$host.png" "$box.png" "$box_most_different_pixels" "$box_largest_difference") \
        || fail "The guide looks different on the device: ${verdict:-the pictures cannot be compared}." "Compare $host.png with $box.png."
    say "The guide's picture: $verdict."
}

# box_draw_guide OUTPUT COMMAND...
box_draw_guide()
{
    local output=$1
    shift
    inside "$@" --at "$box_guide_time" --render "$output.png" --describe "$output.json" >"$output.log"
}
