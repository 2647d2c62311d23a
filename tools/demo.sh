#!/bin/sh
# Shows what ifwatch can do, on the samples: demo.sh BUILD_DIR, from the project's root.
# On a terminal it is paced, for somebody to watch; elsewhere it prints plainly and at once.
set -eu

if [ "${1:-}" != inside ]; then
    [ $# -eq 1 ] || {
        echo "usage: demo.sh BUILD_DIR" >&2
        exit 2
    }
    [ -x "$1/ifwatch" ] || {
        echo "demo: no program $1/ifwatch" >&2
        exit 2
    }
    exec tools/with_router.sh "$1" "$0" inside "$1"
fi
# Inside: the simulated router is there (TRACE_PORT, TRACE_PWD).
build=$2

OUT=$build/demo # the whole of every output
LINES=16        # shown of each, with the rest of the record they end in
LINE_PAUSE=0.04 # seconds behind each line, and behind each part
PART_PAUSE=1.5

errors=kept

bold='' dim='' plain='' paced=''
if [ -t 1 ]; then
    paced=1
    if [ "${TERM:-dumb}" != dumb ] && [ -z "${NO_COLOR:-}" ]; then
        bold=$(printf '\033[1m') dim=$(printf '\033[2m') plain=$(printf '\033[0m')
    fi
fi

say() { printf '\n%s== %s%s\n' "$bold" "$*" "$plain"; }

# A system whose sleep takes no fractions gets no pause.
pause() { [ -z "$paced" ] || sleep "$1" 2>/dev/null || true; }

# Prints its input line by line.
slowly() {
    if [ -z "$paced" ]; then
        cat
        return
    fi
    while IFS= read -r line; do
        printf '%s\n' "$line"
        pause "$LINE_PAUSE"
    done
}

# show NAME TITLE COMMAND...: the command line and the first lines of what it prints, with the error stream where
# errors=shown. Everything is kept.
show() {
    output=$OUT/$1.txt
    say "$2"
    shift 2
    printf '%s$ %s%s\n' "$dim" "$*" "$plain"
    pause 0.5
    status=0
    "$@" >"$output" 2>"$OUT/errors.txt" || status=$?
    [ "$errors" = kept ] || cat "$OUT/errors.txt" >>"$output"
    awk -v enough="$LINES" -v all="$output" '
        { line[NR] = $0 }
        !last && NR >= enough && (/^$/ || NR == 3 * enough) { last = NR }
        END {
            if (!last || NR - last < 5) last = NR
            for (i = 1; i <= last; i++) print line[i]
            if (last < NR) printf "... %d more lines in %s\n", NR - last, all
        }
    ' "$output" | slowly
    [ "$status" -eq 0 ] || {
        cat "$OUT/errors.txt" >&2
        echo "demo: exit status $status; what it printed is in $output" >&2
        exit 1
    }
    pause "$PART_PAUSE"
}

# What a sample says about itself: the first "KEY VALUE" line.
value() { sed -n "s/^$2 *//p" "$1" | sed 's/ *#.*//; q'; }

# The type of an interface, as the list has it.
type_of() { awk -v interface="$1" '$2 == interface { sub(/^[^(]*[(]/, ""); sub(/[)]$/, ""); print }' "$OUT/interfaces.txt"; }

watch() {
    interface=$(value "$1" interface)
    title=$(sed -n '1s/^# *//p' "$1")
    name=${1##*/}
    name=${name%.case}
    # shellcheck disable=SC2046 # the options are words
    show "$name" "$(type_of "$interface") $interface: $title" "$build/ifwatch" $(value "$1" options) 127.0.0.1 "$interface"
}

# The analyser finds the plug-ins of its user in the home folder (from version 4.2 on in the second); here that is an empty
# one with ours in it.
show_analyser() {
    home=$(mkdir -p "$OUT/home" && cd "$OUT/home" && pwd)
    program=$(cd "$build" && pwd)/ifwatch-extcap
    for plugins in "$home/.config/wireshark/extcap" "$home/.local/lib/wireshark/extcap"; do
        mkdir -p "$plugins"
        ln -s "$program" "$plugins"
    done
    show analyser "The router in the list of the analyser" env HOME="$home" tshark -D
    show capture "... and traced there" env HOME="$home" tshark -n -i ifwatch -o extcap.ifwatch.host:127.0.0.1 \
        -o extcap.ifwatch.interface:"$(value samples/isdn-call.case interface)"
}

# Every line at once: the capture that the analyser gets of all interfaces, in the order of the router's clock.
show_whole_router() {
    whole=$OUT/router.pcapng
    : >"$whole"
    show whole "The whole router in one capture" "$build/ifwatch-extcap" --capture --extcap-interface ifwatch --fifo "$whole" \
        --host 127.0.0.1 --port "$TRACE_PORT" --interface all
    show report "... what went wrong on its lines, and what happened" "$build/ifwatch-read" --report "$whole"
    show lines "... and every frame of them, line by line in one order of time" "$build/ifwatch-read" -2 -3 -p -i "$whole"
}

rm -rf "$OUT"
mkdir -p "$OUT"

say "A simulated router serves the samples at 127.0.0.1:$TRACE_PORT"
errors=shown
show interfaces "What can be traced there?" "$build/ifwatch" 127.0.0.1
errors=kept
# In the order of a story; those that it does not name come last.
story='isdn-call isdn-down ppp-dialin x25-session fax-g3 pabx dsl-pppoe dsl-down atm-old lan-session lan-802-3 token-ring'
story="$story wlan tunnel frame-relay"
for name in $story; do
    watch "samples/$name.case"
done
for sample in samples/*.case; do
    [ -e "$OUT/$(basename "$sample" .case).txt" ] || watch "$sample"
done

lan=samples/lan-session.case
show pcap "The same LAN, printed and at once written as PCAP" \
    "$build/ifwatch" --pcap-file --print -i --ofile="$OUT/lan-session.pcap" 127.0.0.1 "$(value "$lan" interface)"
show tshark "... and read by another analyser" tshark -n -r "$OUT/lan-session.pcap"
show read "... or read back, each packet that the router sent marked as such" \
    "$build/ifwatch-read" -i --sent 02:00:01:01:02:03 "$OUT/lan-session.pcap"
show_analyser
show_whole_router
show import "The PCAP file made into a case for the simulator, for tests" \
    "$build/ifwatch-sim" import --sent 02:00:01:01:02:03 "$OUT/lan-session.pcap"

say "That was all of it. With a router of yours: $build/ifwatch ROUTER"
echo "What the lines mean: docs/reading-a-trace.md"
