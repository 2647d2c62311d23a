#!/bin/sh
# lintian_test.sh BUILD: makes the Debian package of what was built; Debian's own checker of packages finds no error.
set -eu
build=$1
# shellcheck source=tests/package/make_package.sh
. "$(dirname "$0")/make_package.sh"

for tool in cpack dpkg-deb dpkg-shlibdeps lintian; do
    command -v "$tool" >/dev/null || {
        echo "skipped: there is no $tool here"
        exit 77
    }
done
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
make_package DEB "$build" "$scratch"
lintian --allow-root --fail-on error "$scratch"/made/ifwatch_*.deb
