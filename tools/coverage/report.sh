#!/bin/sh
# Reads what a run with the preset coverage has counted: report.sh, from the project's root. Leaves a page for each file
# in build/coverage/report, prints what of src/ was reached, and fails when that is less than it has to be.
set -eu

MIN_LINES=97 # per cent
MIN_BRANCHES=90

read_counts() { gcovr --root . --filter src/ -j "$(nproc 2>/dev/null || echo 1)" build/coverage "$@"; }

report=build/coverage/report
mkdir -p "$report"
echo "== reading the counts"
read_counts --json-pretty --json "$report/counts.json"
read_counts --exclude-throw-branches --html-details "$report/index.html"
echo "== what of src/ is tested"
awk -v min_lines="$MIN_LINES" -v min_branches="$MIN_BRANCHES" -v missed_list="$report/missed.txt" \
    -f tools/coverage/summary.awk "$report/counts.json" || {
    echo "coverage: the tests reach too little of src/" >&2
    exit 1
}
echo "== every line: $report/index.html; those that miss something: $report/missed.txt"
