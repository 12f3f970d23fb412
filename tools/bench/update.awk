# Prints the file of recorded counts with the present counts ("name count"). Exits with 1 if an operation has no
# line in the file, or a line has no count.

/^[ \t]*(#|$)/ {
    print
    next
}

{
    split($0, field, "|")
    name = trim(field[1])
    if (!(name in measured)) {
        print name " was not counted." >"/dev/stderr"
        failed = 1
    }
    printf "%s| %9d |%s\n", field[1], measured[name], field[3]
    delete measured[name]
}

END {
    for (name in measured) {
        print name " has no line." >"/dev/stderr"
        failed = 1
    }
    exit failed
}
