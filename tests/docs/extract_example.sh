#!/bin/sh
# Takes the steps by which docs/architecture.md adds a decoder, in a folder of their own: extract_example.sh FOLDER, from
# the project's root. The block behind a line **FILE** is that file, or the change of one that is there already.
set -eu

rm -rf "$1"
mkdir -p "$1/src/inet" "$1/tests/golden/inet"
folder=$(cd "$1" && pwd -P)
cp src/inet/ip.cpp "$folder/src/inet"

awk -v folder="$folder/" '
    /^\*\*[a-z0-9_.\/]+\*\*$/ { file = folder substr($0, 3, length($0) - 4) }
    inside && /^```/ { close(file); file = ""; inside = 0 }
    inside { print > file }
    file != "" && /^```/ { inside = 1; if (/diff/) file = folder "change.diff" }
' docs/architecture.md

# Not as a part of the repository around it, whose paths would be others.
cd "$folder"
GIT_CEILING_DIRECTORIES=$(dirname "$folder") git apply --unidiff-zero change.diff
