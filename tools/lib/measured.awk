# What the scripts share that compare measured values with a file of what they should be: the first file
# has the values, in lines of "name value", the second columns between "|".

function trim(text)
{
    gsub(/^[ \t]+|[ \t]+$/, "", text)
    return text
}

FNR == NR {
    measured[$1] = $2
    next
}
