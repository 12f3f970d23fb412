# The common part of the scripts that compare measured values with recorded ones. The first input file has
# the measured values in lines of "name value". The second has the recorded ones in columns separated by "|".

function trim(text)
{
    gsub(/^[ \t]+|[ \t]+$/, "", text)
    return text
}

FNR == NR {
    measured[$1] = $2
    next
}
