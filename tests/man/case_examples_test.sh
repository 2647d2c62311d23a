#!/bin/sh
# case_examples_test.sh SIMULATOR: the examples of ifwatch-case(5) are case files that the simulator serves.
set -eu
simulator_program=$1
tests=$(cd "$(dirname "$0")/.." && pwd)
# shellcheck source=tests/support/simulator.sh
. "$tests/support/simulator.sh"

scratch=$(mktemp -d)
trap 'stop_simulator; rm -rf "$scratch"' EXIT

awk -v directory="$scratch" '
    /^\.Bd -literal/ { file = directory "/" ++examples ".case"; next }
    /^\.Ed/ { file = "" }
    file { gsub(/\\e/, "\\"); print > file }
' "$tests/../man/ifwatch-case.5"
[ -s "$scratch/2.case" ] || {
    echo "FAILED: the page has lost its examples"
    exit 1
}
for example in "$scratch"/*.case; do
    start_simulator "$simulator_program" "$example"
    stop_simulator
done
