# Prints the file of instruction counts with what was counted now ("name count"). Exits with 1 when a
# work has no line in the file, or a line no count.

function trim(text)
{
    gsub(/^[ \t]+|[ \t]+$/, "", text)
    return text
}

FNR == NR {
    counted[$1] = $2
    next
}

/^[ \t]*(#|$)/ {
    print
    next
}

{
    split($0, field, "|")
    name = trim(field[1])
    if (!(name in counted)) {
        print name " was not counted." >"/dev/stderr"
        failed = 1
    }
    printf "%s| %9d |%s\n", field[1], counted[name], field[3]
    delete counted[name]
}

END {
    for (name in counted) {
        print name " has no line." >"/dev/stderr"
        failed = 1
    }
    exit failed
}
