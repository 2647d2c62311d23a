#!/bin/sh
# debian_test.sh BUILD: makes the Debian package of what was built, installs it in an empty root that holds nothing but
# the packages it depends on, runs its programs there, and removes it without a trace.
set -eu
build=$1
tests=$(cd "$(dirname "$0")/.." && pwd)
PATH=$PATH:/usr/sbin:/sbin
# shellcheck source=tests/support/simulator.sh
. "$tests/support/simulator.sh"
# shellcheck source=tests/package/make_package.sh
. "$tests/package/make_package.sh"

skip() {
    echo "skipped: $*"
    exit 77
}

fail() {
    echo "FAILED: $*"
    exit 1
}

for tool in cpack dpkg dpkg-deb dpkg-shlibdeps file chroot; do
    command -v "$tool" >/dev/null || skip "there is no $tool here"
done
chroot / true 2>/dev/null || skip "changing the root directory takes root"

scratch=$(mktemp -d)
trap 'stop_simulator; rm -rf "$scratch"' EXIT
root=$scratch/root

# --- The package

make_package DEB "$build" "$scratch"
package=$(echo "$scratch"/made/ifwatch_*.deb)

field() { dpkg-deb --field "$package" "$1"; }

[ "$(field Architecture)" = "$(dpkg --print-architecture)" ] || fail "architecture: $(field Architecture)"
[ "$(field Section)" = net ] || fail "section: $(field Section)"
[ -n "$(field Maintainer)" ] || fail "it names no maintainer"
dpkg-deb --contents "$package" >"$scratch/contents"
if awk '$2 != "root/root" || $1 ~ /^.....w|^........w/ && $1 !~ /^l/' "$scratch/contents" | grep .; then
    fail "files of others, or that others may write"
fi

# --- The root: a package database and the shared libraries of the packages it depends on, no more

mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates" "$root/tmp" "$root/lib" "$root/usr/lib"
: >"$root/var/lib/dpkg/available"
dependencies=''
# Adds the package and what it depends on. Of alternatives the first; one that is not here is not needed here either.
add_package() {
    case " $dependencies " in *" $1 "*) return ;; esac
    names=$(dpkg-query --show --showformat='${Pre-Depends},${Depends}' "$1" 2>/dev/null) || return 0
    dependencies="$dependencies $1"
    for name in $(echo "$names" | tr ',' '\n' | awk '{ print $1 }'); do
        add_package "$name"
    done
}
for name in $(field Depends | tr ',' '\n' | awk '{ print $1 }'); do
    add_package "$name"
done
for dependency in $dependencies; do
    dpkg-query --status "$dependency"
    echo
done >"$root/var/lib/dpkg/status"
# shellcheck disable=SC2086 # the packages are words
dpkg-query --listfiles $dependencies | grep -E '^(/usr)?/lib.*/(ld-linux[^/]*|[^/]*\.so\.[^/]*)$' | sort -u >"$scratch/libraries"
[ -L /lib ] && rmdir "$root/lib" && ln -s usr/lib "$root/lib"
if [ -L /lib64 ]; then
    mkdir -p "$root/usr/lib64"
    ln -s usr/lib64 "$root/lib64"
fi
while read -r library; do
    mkdir -p "$root${library%/*}"
    cp -P "$library" "$root$library"
done <"$scratch/libraries"

listing() { find "$root" -path "$root/var/lib/dpkg" -prune -o -printf '%P %y %m %U:%G %s %l\n' | LC_ALL=C sort; }
listing >"$scratch/before"

# --- Installed, used

# A small system may be set to leave documents out; here all files count.
dpkg --root="$root" --log="$scratch/dpkg.log" --path-include="*" -i "$package" >"$scratch/install.txt" 2>&1 || {
    cat "$scratch/install.txt"
    fail "the package could not be installed"
}
for file in bin/ifwatch bin/ifwatch-read bin/ifwatch-sim share/man/man1/ifwatch.1.gz share/man/man1/ifwatch-read.1.gz \
    share/man/man1/ifwatch-sim.1.gz \
    share/man/man5/ifwatch-case.5.gz share/bash-completion/completions/ifwatch \
    share/bash-completion/completions/ifwatch-read share/bash-completion/completions/ifwatch-sim \
    share/zsh/vendor-completions/_ifwatch share/zsh/vendor-completions/_ifwatch-read \
    share/zsh/vendor-completions/_ifwatch-sim share/fish/vendor_completions.d/ifwatch.fish \
    share/fish/vendor_completions.d/ifwatch-read.fish \
    share/fish/vendor_completions.d/ifwatch-sim.fish share/ifwatch/samples/lan-session.case \
    share/doc/ifwatch/README.md; do
    [ -s "$root/usr/$file" ] || fail "the package has no $file"
done
for sample in "$tests"/../samples/*; do
    cmp "$sample" "$root/usr/share/ifwatch/samples/${sample##*/}" || fail "a sample is not what it was"
done

status=0
chroot "$root" /usr/bin/ifwatch 2>"$scratch/usage" || status=$?
[ "$status" -eq 1 ] || fail "ifwatch ended with status $status"
grep -q '^Usage:' "$scratch/usage" || fail "ifwatch shows no usage text"
start_simulator chroot "$root" /usr/bin/ifwatch-sim --once /usr/share/ifwatch/samples/lan-session.case
chroot "$root" /usr/bin/ifwatch --pwd=admin "-P$port" -i 127.0.0.1 1000 >"$scratch/trace" 2>"$scratch/report" ||
    fail "ifwatch ended with status $?: $(cat "$scratch/report")"
frames=$(grep -c '^record' "$tests/../samples/lan-session.case")
[ "$(grep -c '^[0-9.]* [RX] DATA' "$scratch/trace")" -eq "$frames" ] || fail "the trace lacks frames"
wait "$simulator" || fail "ifwatch-sim ended with status $?"
simulator=''
chroot "$root" /usr/bin/ifwatch-sim export /usr/share/ifwatch/samples/lan-session.case -o /tmp/lan.pcap ||
    fail "ifwatch-sim export ended with status $?"
chroot "$root" /usr/bin/ifwatch-read -i /tmp/lan.pcap >"$scratch/read" 2>"$scratch/report" ||
    fail "ifwatch-read ended with status $?: $(cat "$scratch/report")"
rm "$root/tmp/lan.pcap"
[ "$(grep -c '^[0-9.]* [RX] DATA' "$scratch/read")" -eq "$frames" ] || fail "what ifwatch-read shows lacks frames"
if [ -x "$build/ifwatch-extcap" ]; then
    link=$(echo "$root"/usr/lib/*/wireshark/extcap/ifwatch-extcap)
    [ -L "$link" ] || fail "the analyser would not find ifwatch-extcap"
    chroot "$root" "${link#"$root"}" --extcap-interfaces --extcap-version=4.0 >"$scratch/interfaces" ||
        fail "ifwatch-extcap ended with status $?"
    grep -q '^interface {value=' "$scratch/interfaces" || fail "ifwatch-extcap names no interface"
fi

# --- Removed

dpkg --root="$root" --log="$scratch/dpkg.log" --purge ifwatch >"$scratch/purge.txt" 2>&1 || {
    cat "$scratch/purge.txt"
    fail "the package could not be removed"
}
listing >"$scratch/after"
diff "$scratch/before" "$scratch/after" || fail "the removal left something, or took too much"
if find "$root/var/lib/dpkg/info" -name 'ifwatch*' | grep . || grep '^Package: ifwatch' "$root/var/lib/dpkg/status"; then
    fail "the package database still knows it"
fi
