#!/bin/sh
# completions_test.sh SHELL BUILD: the completions of one shell, asked for in that shell, with the programs in BUILD.
set -eu
shell=$1 programs=$2
tests=$(cd "$(dirname "$0")/.." && pwd)
completions=$tests/../completions
# shellcheck source=tests/support/simulator.sh
. "$tests/support/simulator.sh"

command -v "$shell" >/dev/null || {
    echo "skipped: there is no $shell here"
    exit 77
}
scratch=$(mktemp -d)
trap 'stop_simulator; rm -rf "$scratch"' EXIT
cd "$scratch"
unset TRACE_PWD TRACE_PORT TRACE_HOST
failures=0

# The candidates for a command line, sorted; a value without its option, an option without its "=".
candidates() {
    case $shell in
        bash) timeout 20 bash --norc "$tests/completions/capture.bash" "$completions" "$1" ;;
        fish) timeout 20 fish --no-config "$tests/completions/capture.fish" "$completions" "$1" ;;
        zsh) timeout 20 zsh -f "$tests/completions/capture.zsh" "$completions" "$1" ;;
    esac | sed 's/^--[a-z-]*=\(.\)/\1/; s/^\(--.*\)=$/\1/' | LC_ALL=C sort -u
}

# expect LINE CANDIDATES: the candidates are these, which stand one a line and sorted.
expect() {
    found=$(candidates "$1")
    if [ "$found" != "$2" ]; then
        printf 'FAILED: %s\nexpected:\n%s\nfound:\n%s\n' "$1" "$2" "$found"
        failures=$((failures + 1))
    fi
}

lines() { printf '%s\n' "$@"; }

expect "$programs/ifwatch -" "$(sh "$tests/support/usage_options.sh" "$programs/ifwatch")"
expect "$programs/ifwatch --pcap-" "$(lines --pcap-file --pcap-linktype --pcap-pipe)"
expect 'ifwatch -V ' "$(lines 1 2 3)"
: >'trace one.pcap'
: >trace2.pcap
expect 'ifwatch --ofile=trac' "$(lines 'trace one.pcap' trace2.pcap)"
expect 'ifwatch --ofile trace2' trace2.pcap
expect 'ifwatch -T trac' ''
expect 'ifwatch --src=trac' ''

start_simulator "$programs/ifwatch-sim" --verbose "$tests"/../samples/isdn-call.case "$tests"/../samples/tunnel.case \
    "$tests"/../samples/lan-session.case
to_router="$programs/ifwatch -P $port 127.0.0.1"
expect "$to_router " ''
[ ! -s simulator.err ] || {
    echo 'FAILED: the router was asked without a password'
    failures=$((failures + 1))
}
export TRACE_PWD=admin
expect "$to_router " "$(lines 1000 100001 2100)"
expect "$to_router 1" "$(lines 1000 100001)"
expect "$to_router 1000 " ''
expect "$programs/ifwatch -2vP$port -I \\!::6:23:1026 --src=02:00:00:00:00:01 -o 127.0.0.1 2" 2100
expect "$programs/ifwatch --pwd x --ofile=trace2.pcap -P $port -v 127.0.0.1 2" 2100
export TRACE_PWD=wrong
expect "$to_router " ''
export TRACE_PWD=admin TRACE_PORT="$port"
expect "$programs/ifwatch 127.0.0.1 2" 2100
stop_simulator
expect "$programs/ifwatch 127.0.0.1 2" ''

expect "$programs/ifwatch-sim -" "$(sh "$tests/support/usage_options.sh" "$programs/ifwatch-sim")"
expect 'ifwatch-sim --refuse=' "$(lines close reply serve)"
expect 'ifwatch-sim --close-after c' "$(lines challenge chantype connect)"
: >one.case
: >trace3.pcapng
expect 'ifwatch-sim --once one' one.case
expect 'ifwatch-sim --port-file trace2' trace2.pcap
expect 'ifwatch-sim im' import
expect 'ifwatch-sim import trac' "$(lines 'trace one.pcap' trace2.pcap trace3.pcapng)"
expect 'ifwatch-sim export on' one.case
expect 'ifwatch-sim import --sent ' "$(lines all none)"
for subcommand in import export; do
    expect "ifwatch-sim $subcommand -" "$(sh "$tests/support/usage_options.sh" "$programs/ifwatch-sim" "$subcommand")"
done

expect "$programs/ifwatch-read -" "$(sh "$tests/support/usage_options.sh" "$programs/ifwatch-read")"
expect 'ifwatch-read --sent=' "$(lines all none)"
expect 'ifwatch-read --color=a' "$(lines always auto)"
expect 'ifwatch-read --type 1' "$(lines 1 118 131 16)"
expect 'ifwatch-read -i trac' "$(lines 'trace one.pcap' trace2.pcap trace3.pcapng)"
expect 'ifwatch-read trace2.pcap trace3' trace3.pcapng
[ "$failures" -eq 0 ]
