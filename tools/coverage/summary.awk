# awk -v min_lines=PERCENT -v min_branches=PERCENT -v missed_list=FILE -f summary.awk FILE: reads what gcovr
# --json-pretty wrote and prints how much of each folder the tests reach, and where they miss most. The list names every
# line that is not reached, or not left in every way. Fails below the percentages.
#
# Each way out of a decision is a branch. The two ways out of a call, to return and to throw, are none; gcov lists
# them one behind the other and marks the second.

function percent(part, whole) { return whole ? 100 * part / whole : 100 }

function row(name) {
    printf "%-32s %6d of %6d  %5.1f %%  %6d of %6d  %5.1f %%\n", name, reached[name], lines[name],
        percent(reached[name], lines[name]), taken[name], branches[name], percent(taken[name], branches[name])
}

function add(name, line_branches, line_taken) {
    if (!(name in lines)) order[++names] = name
    lines[name]++
    reached[name] += count > 0
    branches[name] += line_branches
    taken[name] += line_taken
}

function end_line(    i, line_branches, line_taken) {
    for (i = 1; i <= ways; i++) {
        if (i < ways && throws[i + 1]) i++
        else if (!throws[i]) {
            line_branches++
            line_taken += times[i] > 0
        }
    }
    add(file, line_branches, line_taken)
    add(folder, line_branches, line_taken)
    add("all", line_branches, line_taken)
    if (!count) print file ":" $2 ": not reached" > missed_list
    else if (line_taken < line_branches)
        printf "%s:%d: %d of %d branches not taken\n", file, $2, line_branches - line_taken, line_branches > missed_list
}

{
    gsub(/[",]/, "")
    value = $2
}
$1 == "file:" {
    file = folder = value
    sub(/[^\/]*$/, "", folder)
}
$1 == "branches:" {
    ways = 0
    inside = value == "["
}
$1 == "]" { inside = 0 }
$1 == "count:" && inside { times[++ways] = value }
$1 == "throw:" { throws[ways] = value == "true" }
$1 == "count:" && !inside { count = value }
$1 == "gcovr/noncode:" { is_code = value == "false" }
$1 == "line_number:" && is_code { end_line() }

END {
    if (!("all" in lines)) {
        print "nothing was counted"
        exit 1
    }
    printf "%-32s %26s  %26s\n", "folder", "lines reached", "branches taken"
    for (i = 1; i <= names; i++) if (order[i] ~ /\/$/) row(order[i])
    row("all")
    print "\nThe files that miss most:"
    for (shown = 0; shown < 10; shown++) {
        worst = ""
        for (i = 1; i <= names; i++) {
            name = order[i]
            missed[name] = lines[name] - reached[name] + branches[name] - taken[name]
            if (name !~ /\/$/ && name != "all" && !(name in done) && missed[name] > missed[worst]) worst = name
        }
        if (worst == "") break
        done[worst] = 1
        row(worst)
    }
    if (percent(reached["all"], lines["all"]) < min_lines || percent(taken["all"], branches["all"]) < min_branches) {
        printf "\nWanted: %s %% of lines, %s %% of branches\n", min_lines, min_branches
        exit 1
    }
}
