# Counts the instructions of the actions that a program marked (see probe/mark.h); prints lines of "name count".
# The input is the log of qemu-<guest> -d in_asm,exec,nochain,strace. QEMU lists a block of instructions when
# it translates the block, and traces the block each time it runs. The address identifies the block: other
# threads may log between its listing and its trace.

function plain(address)
{
    sub(/^(0x)?0*/, "", address)
    sub(/:$/, "", address)
    return address
}

# Trace 0: <address in the emulator> [<base>/<address>/<state>/<state>] <name>
/^Trace/ {
    split($4, part, "/")
    address = plain(part[2])
    if (!(address in size)) {
        print "instructions.awk: a block runs that was not listed: " $0 >"/dev/stderr"
        exit 1
    }
    total += size[address]
    next
}

/^IN:/ {
    block = ""
    next
}

/^0x/ {
    if (!block) {
        block = plain($1)
        size[block] = 0
    }
    ++size[block]
    next
}

/ovelin-cost:/ {
    sub(/.*ovelin-cost:/, "")
    sub(/".*/, "")
    if ($1 == "begin")
        begin[$2] = total
    else if ($2 == "empty")
        empty = total - begin[$2]
    else
        print "instructions-" $2, total - begin[$2] - empty
}
