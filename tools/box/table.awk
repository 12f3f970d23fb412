# Makes the table of costs from the measured values ("name value") and the budgets. Exits with 1 if a value
# exceeds its budget, is missing, is 0 (then the measurement failed) or has no budget.

BEGIN {
    print "| cost on the device | measured | budget | unit |"
    print "|---|---:|---:|---|"
}

/^[ \t]*(#|$)/ {
    next
}

{
    split($0, field, "|")
    key = trim(field[1])
    budget = trim(field[2])
    budgeted[key] = 1
    note = ""
    if (!(key in measured) || measured[key] !~ /^[0-9]+$/ || measured[key] == 0)
        note = " **not measured**"
    else if (measured[key] + 0 > budget + 0)
        note = " **too much**"
    if (note)
        failed = 1
    printf "| %s | %s%s | %s | %s |\n", trim(field[4]), measured[key], note, budget, trim(field[3])
}

END {
    for (key in measured) {
        if (!(key in budgeted)) {
            printf "| %s | %s **no budget** | | |\n", key, measured[key]
            failed = 1
        }
    }
    exit failed
}
