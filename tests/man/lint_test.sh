#!/bin/sh
# lint_test.sh: the manual pages are clean, what they refer to is there, and the examples come before the options.
set -eu
pages=$(cd "$(dirname "$0")/../../man" && pwd)
PATH=$PATH:/usr/sbin:/sbin

if ! command -v mandoc >/dev/null || ! command -v makewhatis >/dev/null; then
    echo "skipped: there is no mandoc here"
    exit 77
fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
status=0

# The pages, and the two of other packages that they may refer to.
mkdir "$scratch/man1" "$scratch/man5"
cp "$pages"/*.1 "$scratch/man1"
cp "$pages"/*.5 "$scratch/man5"
for other in tcpdump tshark; do
    printf '.Dd January 1, 2026\n.Dt %s 1\n.Os\n.Sh NAME\n.Nm %s\n.Nd of another package\n' "$other" "$other" \
        >"$scratch/man1/$other.1"
done
makewhatis "$scratch"
export MANPATH="$scratch"

for page in ifwatch.1 ifwatch-read.1 ifwatch-sim.1 ifwatch-extcap.1 ifwatch-case.5; do
    mandoc -T lint -W style "$pages/$page" >"$scratch/found" || status=1
    cat "$scratch/found"
    [ ! -s "$scratch/found" ] || status=1
    order=$(sed -n 's/^\.Sh //p' "$pages/$page" | head -n 5 | tr '\n' ' ')
    case $order in
        'NAME SYNOPSIS DESCRIPTION EXAMPLES '* | 'NAME DESCRIPTION EXAMPLES '*) ;;
        *)
            echo "FAILED: $page does not begin with its examples: $order"
            status=1
            ;;
    esac
done
exit "$status"
