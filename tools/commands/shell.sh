# shell [COMMAND...]
# Run a command of the tool chain, or a shell, in the current folder.
#
# In the build root system files are read-only; the user's own are as outside.

choose_toolchain
if (($#)); then
    inside "$@"
else
    inside bash
fi
