# Compares counted instructions ("name count") with the file of what they were, as a Markdown table.
# Exits with 1 when one has grown too much, or stands only in one of both.

function trim(text)
{
    gsub(/^[ \t]+|[ \t]+$/, "", text)
    return text
}

BEGIN {
    tolerance = 0.03
    print "| work | instructions | before | change | |"
    print "|---|---:|---:|---:|---|"
}

FNR == NR {
    counted[$1] = $2
    next
}

/^[ \t]*(#|$)/ {
    next
}

{
    split($0, field, "|")
    name = trim(field[1])
    before = trim(field[2])
    known[name] = 1
    if (!(name in counted)) {
        printf "| %s | | %d | | **not counted** |\n", name, before
        failed = 1
        next
    }

    change = counted[name] / before - 1
    note = ""
    if (change > tolerance) {
        note = "**more**"
        failed = 1
    } else if (change < -tolerance) {
        note = "less"
        shrunk = 1
    }
    printf "| %s | %d | %d | %+.1f %% | %s |\n", name, counted[name], before, 100 * change, note
}

END {
    for (name in counted) {
        if (!(name in known)) {
            printf "| %s | %d | | | **has no line in the file** |\n", name, counted[name]
            failed = 1
        }
    }
    if (shrunk)
        print "\nSome work takes less than before. That it stays so: ./dev bench --update"
    exit failed
}
