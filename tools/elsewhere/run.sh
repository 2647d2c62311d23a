#!/bin/sh
# Builds and tests the last commit on another system, from nothing: run.sh SYSTEM, from the project's root. It takes root
# (or sudo), the network, and some gigabytes below build/elsewhere/SYSTEM, where the output of every step stays.
#
#   debian-12, debian-13, debian-testing   in a root that holds no more than a fresh machine: what README says to run, as
#                                          root and as an ordinary user; the packages; a build with clang
#   s390x, i386, armhf                     another processor: cross-built, and run under emulation
#
# Environment: ELSEWHERE_CCACHE, a folder, has a compiler cache in it take part, for rehearsals: the times are then not
# those of a fresh machine, and the result says so.
set -eu

system=${1:-}
case $system in
    debian-12) suite=bookworm kind=release ;;
    debian-13) suite=trixie kind=release ;;
    # Its lists are good for a week, and a mirror may be further behind.
    debian-testing) suite=testing kind=release apt_option='Acquire::Check-Valid-Until false' ;;
    # One archive: of what is installed for two processors the versions must be the same, and updates come at other times.
    s390x | i386 | armhf) suite=trixie kind=processor archive='deb http://deb.debian.org/debian trixie main' ;;
    *)
        echo "usage: ./dev elsewhere debian-12 | debian-13 | debian-testing | s390x | i386 | armhf" >&2
        exit 1
        ;;
esac
[ "$(id -u)" -eq 0 ] || exec sudo ELSEWHERE_CCACHE="${ELSEWHERE_CCACHE:-}" "$0" "$@"

here=tools/elsewhere
work=$PWD/build/elsewhere/$system # steps, times and roots of this system
root=$work/root                   # of the moment
debs=$PWD/build/elsewhere/debs/$suite
mkdir -p "$debs"
rm -rf "$work" # nothing is mounted there any more: mounts end with the command they were made for
mkdir -p "$work"
# shellcheck source=tools/elsewhere/steps.sh
. "$here/steps.sh"

commit=$(GIT_CONFIG_COUNT=1 GIT_CONFIG_KEY_0=safe.directory GIT_CONFIG_VALUE_0='*' git rev-parse --short HEAD)
say "commit $commit on $system; what is not committed plays no part"
row='' # of README's table
make_bare_root
# shellcheck source=tools/elsewhere/release.sh
# shellcheck source=tools/elsewhere/processor.sh
. "$here/$kind.sh"
rm -rf "$root" "$work/bare.tar"

note=''
[ -z "${ELSEWHERE_CCACHE:-}" ] || note=' (with a compiler cache: times and megabytes are not those of a fresh machine)'
say "for README, \"Runs on\"$note"
echo "| $row | $(date -u +%Y-%m-%d), $commit |"
[ -z "$failed" ] || {
    echo "elsewhere: $system FAILED:$failed; see $work" >&2
    exit 1
}
echo "elsewhere: $system passed"
