#!/bin/sh
# options_test.sh PROGRAM PAGE [SUBCOMMAND...]: the page lists the options that the program names, no more and no less.
set -eu
program=$1 page=$2
shift 2
tests=$(cd "$(dirname "$0")/.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

sh "$tests/support/usage_options.sh" "$program" >"$scratch/named"
for subcommand in "$@"; do
    sh "$tests/support/usage_options.sh" "$program" "$subcommand" >>"$scratch/named"
done
case ${page##*/} in
    ifwatch.1) printf '%s\n' '-?' -H -n -z ;; # which the usage text leaves out
    *) echo --help ;; # which goes without saying
esac >>"$scratch/named"
LC_ALL=C sort -u -o "$scratch/named" "$scratch/named"

awk '/^\.It .*Fl / {
    for (i = 2; i < NF; i++) {
        if ($i != "Fl") continue
        if ($(i + 1) == "Fl") { print "--" $(i + 2); i += 2 } else print "-" $(i + 1)
    }
}' "$page" | sed 's/\\&//; s/^--$//' | LC_ALL=C sort -u >"$scratch/listed"
[ "$(wc -l <"$scratch/listed")" -gt 5 ] || {
    echo "FAILED: $page lists hardly any option"
    exit 1
}
diff "$scratch/named" "$scratch/listed" || {
    echo "FAILED: < named by the program, > listed in ${page##*/}"
    exit 1
}
