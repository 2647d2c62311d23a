#!/bin/sh
# Counts the instructions that showing each of the cases takes, and holds them to the recorded ones.
#
#     count.sh check SHOW_CASES COMPILER RECORDED CASE...     status 1 when a count has grown by more than a tenth
#     count.sh record SHOW_CASES COMPILER RECORDED CASE...    writes the counts of today to RECORDED
#
# The counts hold for one compiler, whose name is the first line of RECORDED; with another, or without valgrind, there
# is nothing to compare: status 77.
set -eu

action=$1 program=$2 compiler=$3 recorded=$4
shift 4

skip() {
    echo "skipped: $*"
    exit 77
}

command -v valgrind >/dev/null || skip "there is no valgrind here"
if [ "$action" = check ] && [ "$(head -n 1 "$recorded")" != "# $compiler" ]; then
    skip "the counts were taken with another compiler: $(head -n 1 "$recorded"), and this is $compiler"
fi

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# The C library chooses its copying functions by the processor; it is told to take the same everywhere. Its first
# choice without any of these is the one for the oldest processors.
GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2,-AVX512F,-AVX512VL,-AVX512BW,-ERMS,-FSRM,-SSSE3,-SSE4_1,-SSE4_2,-AVX_Fast_Unaligned_Load \
    valgrind --tool=callgrind --callgrind-out-file="$folder/out" --toggle-collect=show_case --dump-after=show_case \
    "$program" "$@" >"$folder/log" 2>&1 || {
    cat "$folder/log"
    exit 1
}

# Folder, name and count of each case; the dumps are numbered in the order of the cases.
counts() {
    number=0
    for path; do
        number=$((number + 1))
        directory=${path%/*}
        count=$(sed -n 's/^totals: //p' "$folder/out.$number")
        printf '%s/%s\t%s\n' "${directory##*/}" "$(basename "$path" .case)" "${count:?}"
    done
}

if [ "$action" = record ]; then
    {
        echo "# $compiler"
        echo "# Instructions that showing a case takes; ./dev count writes them anew."
        counts "$@"
    } >"$recorded"
    exit 0
fi
counts "$@" | awk -F '\t' -v recorded="$recorded" '
    BEGIN { while ((getline line <recorded) > 0) if (line !~ /^#/) { split(line, field, "\t"); before[field[1]] = field[2] } }
    !($1 in before) { new++; next }
    {
        compared++
        all += $2
        all_before += before[$1]
        if ($2 <= before[$1] * 1.1) next
        bad = 1
        printf "%s: %d instructions, %.0f %% more than recorded\n", $1, $2, ($2 / before[$1] - 1) * 100
    }
    END {
        if (all_before) printf "%d cases: %+.2f %%\n", compared, (all / all_before - 1) * 100
        if (new) printf "%d cases have no count recorded\n", new
        if (bad || new) print "./dev count records the counts anew; a change that makes them grow says why"
        exit bad || !compared
    }'
