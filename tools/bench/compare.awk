# Compares counted instructions ("name count") with the file of what they were, as a Markdown table.
# Exits with 1 when one has grown too much, or stands only in one of both.

BEGIN {
    tolerance = 0.03
    print "| work | instructions | before | change | |"
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
            printf "| %s | %d | | | **has no line in the file** |\n", name, measured[name]
            failed = 1
        }
    }
    if (shrunk)
        print "\nSome work takes less than before. That it stays so: ./dev bench --update"
    exit failed
}
