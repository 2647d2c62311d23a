# awk -v seed=NUMBER -f choose.awk: puts what places.awk prints into the order in which it is tried, the same on every
# machine: one place of each file first, the files in a chance order, then all the others. Of what could stand at a
# place one is chosen.

function chance(below) {
    state = (state * 16807) % 2147483647
    return int(state / 2147483647 * below)
}

function shuffle(list, count,    i, other, kept) {
    for (i = count; i > 1; i--) {
        other = 1 + chance(i)
        kept = list[i]
        list[i] = list[other]
        list[other] = kept
    }
}

BEGIN {
    FS = "\t"
    state = seed % 2147483646 + 1
    chance(2)
    chance(2)
}

{
    line[NR] = $1 "\t" $2 "\t" $3 "\t" $4 "\t" $(5 + chance(NF - 4))
    file[NR] = $1
    order[NR] = NR
}

END {
    shuffle(order, NR)
    for (i = 1; i <= NR; i++) {
        if (file[order[i]] in seen) later[++waiting] = order[i]
        else print line[order[i]]
        seen[file[order[i]]] = 1
    }
    for (i = 1; i <= waiting; i++) print line[later[i]]
}
