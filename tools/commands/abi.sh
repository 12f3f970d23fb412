# abi [--update]
# Compare the binary interface with the one recorded in abi/, or record it anew.
#
# It looks at the library for x86-64 and for the device. The first run builds Qt for the device, as
# ./dev box does.

use_workshop
case ${1:-} in
"") abi_check ;;
--update) abi_record ;;
*) fail "./dev abi has no option \"$1\"." "\"./dev help abi\" describes the command." ;;
esac
