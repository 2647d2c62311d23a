# awk -v seed=NUMBER -v wanted=PERCENT -f summary.awk FILE: prints how many of the changes that mutate.sh has tried were
# noticed, by folder and by the tests that did, and every change that was not. Fails when they are too many.

BEGIN { FS = "\t" }

{
    folder = $1
    sub(/[^\/]*$/, "", folder)
    if (!(folder in changes)) order[++folders] = folder
    changes[folder]++
    if ($5 == "none") survivors[++survived] = $1 ":" $2 ": " $3 " -> " ($4 == "" ? "nothing" : $4)
    else {
        noticed[folder]++
        split($5, test, "/")
        by[test[1]]++
    }
}

function row(name, part, whole) { printf "%-16s %6d of %6d  %5.1f %%\n", name, part, whole, 100 * part / whole }

END {
    printf "\n%-16s %16s\n", "folder", "noticed"
    for (i = 1; i <= folders; i++) row(order[i], noticed[order[i]], changes[order[i]])
    row("all", NR - survived, NR)
    printf "\nnoticed first by: golden %d, unit %d, e2e %d, replay %d; seed %d\n",
        by["golden"], by["unit"], by["e2e"], by["replay"], seed
    if (survived) print "\nNoticed by no test:"
    for (i = 1; i <= survived; i++) print survivors[i]
    exit 100 * (NR - survived) < wanted * NR
}
