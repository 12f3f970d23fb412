# Prints how many instructions the actions took that a program marked, in lines of "name count", from
# the log of qemu-<guest> -d in_asm,exec,nochain,strace. Each block of instructions is listed when it
# is translated and traced whenever it runs; a block is known by its address and state, $4.

/^Trace/ {
    if (listed) {
        size[$4] = listed
        listed = 0
    }
    total += size[$4]
    next
}

/^0x/ {
    ++listed
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
