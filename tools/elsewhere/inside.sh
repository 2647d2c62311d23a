#!/bin/sh
# inside.sh ROOT DEBS USER COMMAND: runs a shell command in the root as that user, from a login. Started by unshare, so
# that what is mounted here is seen by nobody else, and gone with the command.
set -eu
root=$1
debs=$2

mount --rbind /dev "$root/dev"
mount -t proc proc "$root/proc"
mount -t sysfs -o ro sysfs "$root/sys"
mount --bind "$debs" "$root/var/cache/apt/archives" # what was fetched before
if [ -n "${ELSEWHERE_CCACHE:-}" ]; then
    mkdir -p "$ELSEWHERE_CCACHE" "$root/ccache"
    mount --bind "$ELSEWHERE_CCACHE" "$root/ccache"
fi
exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin TERM=dumb chroot "$root" su -l "$3" -c "$4"
