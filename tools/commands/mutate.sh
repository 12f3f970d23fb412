# mutate [PART...] [--every N]
# Change the library in one place at a time and see whether a test fails.
#
# PART is a subsystem (a folder of src) or a file such as text/hyphenation.cpp. The tests of a subsystem
# are in the folder of tests with the same name. All changes take over an hour; --every N tries only each
# N-th change. tools/mutate/equivalent.txt lists the changes that no test can notice, with the reasons.
# The command fails when the tests notice less than 95 % of the other changes.

readonly least_caught=95 # per cent

mutate()
{
    inside python3 "$repository/tools/mutate/mutate.py" "$repository" \
        "$folder" "$least_caught" --jobs "$(processors)" "$@"
}

parts=()
while (($#)) && [[ $1 != --* ]]; do
    [[ -e $repository/src/$1 ]] || fail "There is no \"$1\" in src." "The folders of src are the subsystems."
    parts+=("${1%/}")
    shift
done
if ((${#parts[@]} == 0)); then
    mapfile -t parts < <(find "$repository/src" -mindepth 1 -maxdepth 1 -type d -printf '%P\n' | sort)
fi

try_fewer_texts
use_workshop
folder=$repository/build/$toolchain/mutate
mkdir --parents "$folder"
take_lock "$folder.lock" "is trying changes in $(short_path "$folder")"
failed=()
for part in "${parts[@]}"; do
    mutate "$part" "$@" || failed+=("$part")
done
((${#failed[@]} == 0)) || fail "The tests did not notice enough changes of: ${failed[*]}; see above." \
    "Add tests, or list the changes that no test can notice in tools/mutate/equivalent.txt."
