#!/bin/sh
# Takes every figure, prints the table, and leaves it in bench/RESULTS.md, bench/history.tsv and docs/growth.svg:
# run.sh PROGRAMS [PART...], from the project's root. With a PART only the table is printed. With the name of a benchmark in
# place of the parts this one is run, with the arguments that follow.
set -eu

programs=$1
shift
if [ $# -gt 0 ] && [ -f "bench/$1.cpp" ]; then
    program=$programs/$1
    shift
    exec "$program" "$@"
fi
echo "== measuring; another load on the machine shows in the figures"
scratch=$programs/scratch
mkdir -p "$scratch"

"$programs/measure" "$programs" "$scratch" "$@" >"$scratch/figures.tsv"
awk -f bench/table.awk "$scratch/figures.tsv"
rm -f "$scratch"/*.pcap
[ $# -eq 0 ] || exit 0

# What earlier runs left here does not make the commit another one.
if commit=$(git rev-parse --short HEAD 2>/dev/null); then
    git diff --quiet HEAD -- . ':!bench/history.tsv' ':!bench/RESULTS.md' ':!docs/growth.svg' || commit=$commit-dirty
else
    commit=unknown
fi
machine="$(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1), $(nproc) processors, Linux $(uname -r)"
compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[^=]*=//p' "$programs/CMakeCache.txt")

# Rows are added and never changed: date, commit, machine, then the columns of the table.
awk -F '\t' -v OFS='\t' -v head="$(date -u +%Y-%m-%d)	$commit	$machine" 'NR > 1 { print head, $0 }' \
    "$scratch/figures.tsv" >>bench/history.tsv

{
    cat bench/results_head.md
    echo "- $machine"
    echo "- $("$compiler" --version | head -n 1), flags of the preset bench, which are those of release"
    echo "- $(tcpdump --version 2>&1 | head -n 1); $(tshark --version 2>/dev/null | head -n 1)"
    echo "- commit $commit, $(date -u +%Y-%m-%d)"
    echo
    awk -v markdown=1 -f bench/table.awk "$scratch/figures.tsv"
    echo
    cat bench/results_tail.md
} >bench/RESULTS.md

gnuplot -e "data='$scratch/growth.tsv'; picture='docs/growth.svg'" bench/growth.gp
