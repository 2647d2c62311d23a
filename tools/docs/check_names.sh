#!/bin/sh
# Checks that the files and functions which documents name are there: check_names.sh DOCUMENT... from the project's root.
set -eu
sources=$(mktemp)
trap 'rm -f "$sources"' EXIT
find src tools tests bench \( -name '*.h' -o -name '*.cpp' \) -exec cat {} + >"$sources"
awk -f tools/docs/check_names.awk "$sources" "$@"
