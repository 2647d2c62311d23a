#!/bin/sh
# lintian_test.sh BUILD: makes the Debian package of what was built; Debian's own checker of packages finds no error.
set -eu
build=$1

for tool in cpack dpkg-deb dpkg-shlibdeps lintian; do
    command -v "$tool" >/dev/null || {
        echo "skipped: there is no $tool here"
        exit 77
    }
done
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
(cd "$build" && cpack -G DEB -B "$scratch/made" >"$scratch/cpack.txt" 2>&1) || {
    cat "$scratch/cpack.txt"
    echo "FAILED: the package could not be made"
    exit 1
}
lintian --allow-root --fail-on error "$scratch"/made/ifwatch_*.deb
