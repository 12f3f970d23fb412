# shell [COMMAND...]
# Run a command of the tool chain, or a shell, in the current folder.
#
# In the build root the system's files are read-only. The user's files are the same as outside.

choose_toolchain
if (($#)); then
    inside "$@"
else
    inside bash
fi
