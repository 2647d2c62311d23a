#!/bin/sh
# Runs one fuzz target: run_target.sh SECONDS PROGRAM, from the project's root. Its output comes in one piece, at the end.
# What the code under test prints about bad input is of no interest here. -max_len: two records of the greatest length.
set -eu
name=${2##*/}
log=build/fuzz/$name.log
mkdir -p "build/fuzz/corpus/$name"
status=0
"$2" -close_fd_mask=3 -max_len=20000 -timeout=30 -max_total_time="$1" \
    -artifact_prefix="build/fuzz/$name-" -print_final_stats=1 "build/fuzz/corpus/$name" >"$log" 2>&1 || status=1
echo "== $name"
cat "$log"
exit "$status"
