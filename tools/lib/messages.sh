# Messages for the user. They go to standard error, so that standard output has only a command's output.

say()
{
    printf 'dev: %s\n' "$*" >&2
}

# fail WHAT_AND_WHY [WHAT_TO_DO]...
fail()
{
    printf 'dev: %s\n' "$@" >&2
    exit 1
}

# Opens FILE and waits for the lock on it; prints a message only if it has to wait. Sets lock, the file's
# descriptor: closing it releases the lock.
# take_lock FILE WHAT_THE_OTHER_RUN_DOES
take_lock()
{
    exec {lock}>"$1"
    flock --nonblock "$lock" && return
    say "Another run $2; waiting for it."
    flock "$lock"
}
