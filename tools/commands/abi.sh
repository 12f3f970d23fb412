# abi [--update]
# Compare the binary interface with the recorded one, or record it anew in abi/.
#
# For the machine at hand and for the box, whose Qt is built the first time as by ./dev box.

use_workshop
case ${1:-} in
"") abi_check ;;
--update) abi_record ;;
*) fail "\"$1\" is no option of ./dev abi." "\"./dev help abi\" tells which there are." ;;
esac
