#!/bin/sh
# Follows the steps by which docs/architecture.md adds a decoder, in a scratch folder, and runs the case that it writes:
# example_test.sh BUILD_DIR COMPILER, from the project's root. No step may be missing there, none may have gone stale.
set -eu

build=$1
compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/src/inet" "$work/tests/golden/inet"
cp src/inet/ip.cpp "$work/src/inet"

# The block behind a line **FILE** is that file, or a change of it.
awk -v folder="$work/" '
    /^\*\*[a-z0-9_.\/]+\*\*$/ { file = folder substr($0, 3, length($0) - 4) }
    inside && /^```/ { close(file); file = ""; inside = 0 }
    inside { print > file }
    file != "" && /^```/ { inside = 1; if (/diff/) file = folder "change.diff" }
' docs/architecture.md

(cd "$work" && git init -q && git apply --unidiff-zero change.diff)
for source in igmp ip; do
    "$compiler" -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -I"$work/src" -Isrc \
        -c "$work/src/inet/$source.cpp" -o "$work/$source.o"
done
# What stands in front of the library takes the place of its own.
"$compiler" -std=c++20 -Isrc src/client/main.cpp "$work/igmp.o" "$work/ip.o" "$build/libifwatch_core.a" -lcrypto -o "$work/ifwatch"
"$build/golden_runner" --ifwatch "$work/ifwatch" --sim "$build/ifwatch-sim" "$work/tests/golden/inet/igmp.case"
