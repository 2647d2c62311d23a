# Prints the figures as a table, with -v markdown=1 as one of Markdown.

BEGIN { FS = "\t" }
{
    for (i = 1; i <= 6; i++) {
        cell[NR, i] = $i
        if (length($i) > width[i]) width[i] = length($i)
    }
}
END {
    edge = markdown ? "| " : ""
    between = markdown ? " | " : "  "
    for (row = 1; row <= NR; row++) {
        line = edge
        for (i = 1; i <= 6; i++) line = line sprintf("%-*s", width[i], cell[row, i]) (i < 6 ? between : "")
        if (markdown) line = line " |"
        sub(/ +$/, "", line)
        print line
        if (row > 1) continue
        line = edge
        for (i = 1; i <= 6; i++) {
            rule = sprintf("%*s", width[i], "")
            gsub(/ /, "-", rule)
            line = line rule (i < 6 ? between : markdown ? " |" : "")
        }
        print line
    }
}
