# Writes a document with its traces made anew: awk -v build=DIR [-v picture=1] -f embed.awk FILE
# embed.sh tells what the blocks look like. With `picture` every line of the input is a command with its choice in
# brackets, and the output is the text of the picture.

BEGIN {
    port = ENVIRON["TRACE_PORT"]
    captures = ENVIRON["CAPTURES"]
}

function complain(text) {
    printf "%s:%d: %s\n", FILENAME, FNR, text | "cat >&2"
    bad = 1
    exit 2
}

# Captures the interface INDEX of the router into INDEX.pcapng, for a command that reads it.
function capture(index_, file) {
    file = captures "/" index_ ".pcapng"
    if (system(": >" file " && " build "/ifwatch-extcap --capture --extcap-interface ifwatch --host 127.0.0.1 --port " \
        port " --interface " index_ " --router-time --fifo " file " >&2") != 0) complain("cannot capture " index_)
}

# Runs a command and keeps what a terminal would show: line[], and the record of each in part[]: 0 before the first,
# `records` + 1 behind the last.
function run(shown, command, text, ended) {
    if (shown !~ /^[-A-Za-z0-9_=.:,!\/ ]+$/) complain("no command for here: " shown)
    command = build "/" shown
    sub(/ router( |$)/, " 127.0.0.1 ", command)
    if (match(command, /[0-9]+\.pcapng$/)) {
        capture(substr(command, RSTART, RLENGTH - length(".pcapng")))
        sub(/[0-9]+\.pcapng$/, captures "/&", command)
    }
    lines = records = ended = 0
    while (((command " 2>&1; echo status $?") | getline text) > 0) {
        # The one thing that changes from run to run; 7000 is where a router listens.
        sub("^ifwatch: connected to 127.0.0.1:" port "$", "ifwatch: connected to 127.0.0.1:7000", text)
        if (text ~ /^(### |[0-9][0-9][0-9][0-9][0-9][0-9]+\.[0-9][0-9][0-9] )/) {
            if (!was_loss) records++
            was_loss = text ~ /^### /
        }
        if (text ~ /^trc hdr too short!/) ended = 1
        line[++lines] = text
        part[lines] = records + ended
    }
    close(command " 2>&1; echo status $?")
    if (line[lines--] != "status 0") complain(shown ": " line[lines + 1])
}

# Sets chosen[] from words such as: head 1-4 9 tail
function choose(choice, words, count, i, ends, from, to) {
    split("", chosen)
    count = split(choice, words, " ")
    for (i = 0; count == 0 && i <= records + 1; i++) chosen[i] = 1
    for (i = 1; i <= count; i++) {
        if (words[i] == "head") words[i] = 0
        if (words[i] == "tail") words[i] = records + 1
        from = to = words[i]
        if (split(words[i], ends, "-") == 2) {
            from = ends[1]
            to = ends[2]
        }
        if (from !~ /^[0-9]+$/ || to !~ /^[0-9]+$/) complain("what is '" words[i] "'? records are chosen by their numbers")
        if (to > records + 1) complain("record " to " of " records)
        for (from += 0; from <= to + 0; from++) chosen[from] = 1
    }
}

# Prints the chosen parts, without the empty lines at the end.
function show(i, empty, gap) {
    for (i = 1; i <= lines; i++) {
        if (!(part[i] in chosen)) {
            gap = 1
            continue
        }
        if (gap) print "..."
        for (; empty && !gap; empty--) print ""
        empty = gap = 0
        if (line[i] ~ /^$/) empty++
        else print line[i]
    }
    if (gap) print "..."
}

function embed(shown, choice) {
    run(shown)
    choose(choice)
    print "$ " shown
    show()
}

picture {
    if (NR > 1) print ""
    choice = ""
    if (match($0, / \[.*\]$/)) {
        choice = substr($0, RSTART + 2, RLENGTH - 3)
        $0 = substr($0, 1, RSTART - 1)
    }
    embed(substr($0, 3), choice)
    next
}

skipping && /^```/ { skipping = 0 }
skipping { next }
{ print }
/^```text/ {
    choice = substr($0, 8)
    if ((getline) <= 0) complain("a block without an end")
    if (/^\$ ifwatch/) {
        embed(substr($0, 3), choice)
        skipping = 1
    } else print
}

END {
    if (skipping) complain("a block without an end")
    exit bad ? 2 : 0
}
