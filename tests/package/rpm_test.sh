#!/bin/sh
# rpm_test.sh BUILD: makes the RPM package of what was built and looks at what it says about itself.
set -eu
build=$1
source=$(cd "$(dirname "$0")/../.." && pwd)
# shellcheck source=tests/package/make_package.sh
. "$source/tests/package/make_package.sh"

command -v rpmbuild >/dev/null || {
    echo "skipped: there is no rpmbuild here"
    exit 77
}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

make_package RPM "$build" "$scratch"
package=$(echo "$scratch"/made/ifwatch-*.rpm)
query() { rpm --dbpath "$scratch/db" "$@"; }

{
    for program in ifwatch ifwatch-read ifwatch-sim ifwatch-extcap; do
        [ ! -x "$build/$program" ] || echo "/usr/bin/$program"
    done
    for file in bash-completion/completions/ifwatch bash-completion/completions/ifwatch-read \
        bash-completion/completions/ifwatch-sim zsh/site-functions/_ifwatch-read \
        fish/vendor_completions.d/ifwatch-read.fish man/man1/ifwatch-read.1.gz \
        zsh/site-functions/_ifwatch zsh/site-functions/_ifwatch-sim fish/vendor_completions.d/ifwatch.fish \
        fish/vendor_completions.d/ifwatch-sim.fish man/man1/ifwatch.1.gz man/man1/ifwatch-sim.1.gz \
        man/man5/ifwatch-case.5.gz doc/ifwatch doc/ifwatch/docs doc/ifwatch/docs/reading-a-trace.md \
        doc/ifwatch/docs/session.svg doc/ifwatch/docs/report.svg doc/ifwatch/docs/window-call.png ifwatch ifwatch/samples; do
        echo "/usr/share/$file"
    done
    if [ -x "$build/ifwatch-extcap" ]; then
        echo /usr/share/man/man1/ifwatch-extcap.1.gz
        echo /usr/lib64/wireshark/extcap/ifwatch-extcap
    fi
    for file in "$source"/samples/*; do
        echo "/usr/share/ifwatch/samples/${file##*/}"
    done
    for file in README.md SECURITY.md CHANGELOG.md; do
        [ ! -e "$source/$file" ] || echo "/usr/share/doc/ifwatch/$file"
    done
} | LC_ALL=C sort >"$scratch/expected"
query -qlp "$package" | LC_ALL=C sort >"$scratch/listed"
diff "$scratch/expected" "$scratch/listed" || {
    echo "FAILED: its files are not those expected"
    exit 1
}
query -qp --requires "$package" | grep -q '^libcrypto' || {
    echo "FAILED: it does not ask for the library that ifwatch links"
    exit 1
}
