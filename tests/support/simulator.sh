# shellcheck shell=sh
# For the shell tests: start_simulator PROGRAM ARG... sets `port`; stop_simulator ends it. Needs a directory in $scratch;
# what it reports on its error stream is in $scratch/simulator.err.

simulator=''
port=''

start_simulator() {
    mkfifo "${scratch:?}/listening"
    "$@" --port 0 >"$scratch/listening" 2>"$scratch/simulator.err" &
    simulator=$!
    read -r port <"$scratch/listening" || port=''
    rm "$scratch/listening"
    port=${port##*:}
    [ -n "$port" ] || cat "$scratch/simulator.err" >&2
    [ -n "$port" ]
}

stop_simulator() {
    [ -n "$simulator" ] || return 0
    kill "$simulator" 2>/dev/null || true
    wait "$simulator" 2>/dev/null || true
    simulator=''
}
