# What the user is told. It goes to standard error, so that the output of a command stays clean.

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

# Waits for the lock on an open file and says so only when it has to wait.
# take_lock DESCRIPTOR WHAT_THE_OTHER_RUN_DOES
take_lock()
{
    flock --nonblock "$1" && return
    say "Another run $2; waiting for it."
    flock "$1"
}
