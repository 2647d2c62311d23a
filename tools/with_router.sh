#!/bin/sh
# Runs a command beside a simulated router that serves the samples: with_router.sh BUILD_DIR COMMAND [ARG...]
# TRACE_PORT and TRACE_PWD, which ifwatch reads, tell the command how to reach the router at 127.0.0.1. Returns the
# command's exit status, or 2 when the router does not come up. Run from the project's root.
set -eu

build=$1
shift
[ -x "$build/ifwatch-sim" ] || {
    echo "with_router: no program $build/ifwatch-sim" >&2
    exit 2
}
work=$(mktemp -d)
simulator=''

stop() {
    [ -z "$simulator" ] || kill "$simulator" 2>/dev/null || true
    rm -rf "$work"
}
trap stop EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

TRACE_PWD=demo
mkfifo "$work/says"
"$build/ifwatch-sim" --port 0 --password "$TRACE_PWD" samples/*.case >"$work/says" &
simulator=$!
read -r line <"$work/says" || {
    echo "with_router: the simulated router did not come up" >&2
    exit 2
}
TRACE_PORT=${line##*:}
CAPTURES=$work # for captures that the command makes
export TRACE_PWD TRACE_PORT CAPTURES

"$@"
