# mutate [PART...] [--every N]
# Change the library at one place at a time and tell whether the tests notice.
#
# A PART is a subsystem, which is a folder of src, or one file there, as in text/hyphenation.cpp. The
# tests of each subsystem are in the folder of tests of the same name. With --every N only each N-th
# change is tried: all of them take an hour and more. Changes that no test could notice are listed with
# their reasons in tools/mutate/equivalent.txt. Fails below 95 %.

readonly least_caught=95

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
exec {lock}>"$folder.lock"
take_lock "$lock" "is trying changes in $(short_path "$folder")"
failed=()
for part in "${parts[@]}"; do
    mutate "$part" "$@" || failed+=("$part")
done
((${#failed[@]} == 0)) || fail "Too many changes went unnoticed: ${failed[*]}; they are listed above." \
    "Mend the tests, or list what is equivalent in tools/mutate/equivalent.txt."
