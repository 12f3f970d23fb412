# Compares counted instructions ("name count") with the recorded counts and prints a Markdown table. Exits
# with 1 if a count has grown by more than the tolerance, or if only one of the two files has the operation.

BEGIN {
    tolerance = 0.03 # counts of the same program differ by less than this from run to run
    print "| operation | instructions | before | change | |"
    print "|---|---:|---:|---:|---|"
}

/^[ \t]*(#|$)/ {
    next
}

{
    split($0, field, "|")
    name = trim(field[1])
    before = trim(field[2])
    known[name] = 1
    if (!(name in measured)) {
        printf "| %s | | %d | | **not counted** |\n", name, before
        failed = 1
        next
    }

    change = measured[name] / before - 1
    note = ""
    if (change > tolerance) {
        note = "**more**"
        failed = 1
    } else if (change < -tolerance) {
        note = "less"
        shrunk = 1
    }
    printf "| %s | %d | %d | %+.1f %% | %s |\n", name, measured[name], before, 100 * change, note
}

END {
    for (name in measured) {
        if (!(name in known)) {
            printf "| %s | %d | | | **not recorded** |\n", name, measured[name]
            failed = 1
        }
    }
    if (shrunk)
        print "\nSome operation takes less than recorded. To record the lower count: ./dev bench --update"
    exit failed
}
