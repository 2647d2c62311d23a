# Read by run.sh: bare roots, and commands that run in them. Uses system, suite, work, root, debs and here.
# shellcheck shell=sh disable=SC2154

failed='' # the steps that did

say() { printf '== %s\n' "$*"; }

# A system as it is installed, with what it takes to fetch the project: git, and a user who may use sudo.
make_bare_root() {
    say "a bare root of $suite"
    more=''
    [ -z "${ELSEWHERE_CCACHE:-}" ] || more=,ccache
    mmdebstrap --variant=minbase ${apt_option:+--aptopt="$apt_option"} --include="ca-certificates,git,sudo$more" \
        "$suite" "$work/bare.tar" ${archive:+"$archive"} >"$work/bare-root.txt" 2>&1 || {
        tail -n 20 "$work/bare-root.txt"
        echo "elsewhere: no root of $suite could be made" >&2
        exit 1
    }
}

# fresh_root USER: the bare root once more, with a clone of the project in the user's home folder.
fresh_root() {
    rm -rf "$root"
    mkdir "$root"
    tar -xpf "$work/bare.tar" -C "$root"
    cp /etc/resolv.conf "$root/etc/resolv.conf"
    if [ "$1" != root ]; then
        chroot "$root" useradd --create-home --shell /bin/bash "$1"
        echo "$1 ALL=(ALL) NOPASSWD: ALL" >"$root/etc/sudoers.d/$1"
    fi
    home=$(chroot "$root" getent passwd "$1" | cut -d : -f 6)
    # The sources may be somebody else's; git is told by the configuration of a home folder of its own.
    mkdir -p "$work/home"
    printf '[safe]\n\tdirectory = *\n' >"$work/home/.gitconfig"
    HOME=$work/home git -c advice.detachedHead=false clone --quiet . "$root$home/ifwatch"
    chroot "$root" chown -R "$1:" "$home/ifwatch"
    tree=$home/ifwatch
}

# inside USER COMMAND: a shell command in the root, in the project's folder. Its mounts and processes end with it.
inside() {
    command="cd $tree && $2"
    if [ -n "${ELSEWHERE_CCACHE:-}" ]; then
        caching="CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_DIR=/ccache CCACHE_BASEDIR=$tree CCACHE_NOHASHDIR=1"
        caching="$caching CCACHE_SLOPPINESS=pch_defines,time_macros CCACHE_UMASK=000" # for both users
        command="export $caching; $command"
    fi
    unshare --mount --pid --fork --kill-child "$here/inside.sh" "$root" "$debs" "$1" "$command" </dev/null
}

megabytes() { du -sxm "$1" | cut -f 1; }

# The seconds that a processor was busy, of what the shell's times has written: another load does not show in them.
busy_seconds() {
    awk 'NR == 2 { for (i = 1; i <= 2; i++) { split($i, part, "m"); sum += 60 * part[1] + part[2] } print int(sum) }' "$work/times"
}

# step NAME USER COMMAND: runs it inside, keeps what it prints in NAME.txt, and tells how long it took, and how many
# megabytes it has added to the system and to the project's folder.
step() {
    log=$work/$1.txt
    say "$1: $3"
    system_before=$(megabytes "$root") tree_before=$(megabytes "$root$tree")
    began=$(date +%s)
    times >"$work/times"
    busy=$(busy_seconds)
    outcome=passed
    inside "$2" "$3" >"$log" 2>&1 || outcome=FAILED
    times >"$work/times"
    busy=$(($(busy_seconds) - busy))
    seconds=$(($(date +%s) - began))
    added=$(($(megabytes "$root$tree") - tree_before))
    installed=$(($(megabytes "$root") - system_before - added))
    echo "   $outcome in $((seconds / 60)) min $((seconds % 60)) s, $busy s of a processor; $installed MB installed, $added MB built"
    # What apt fetched; from the second run on it has most of it already.
    sed -n 's/^Need to get \([0-9,.]* [kM]\?B\/\)\?\(.*\) of archives.*/   \2 of packages/p' "$log"
    warnings=$(grep -c 'warning: ' "$log") || true
    [ "$warnings" -eq 0 ] || echo "   $warnings lines with a warning"
    [ "$outcome" = passed ] || {
        failed="$failed $1"
        tail -n 60 "$log"
        return 0
    }
    sed -n '/tests passed, /p; /^== left out/,$p' "$log"
}

# tests_of NAME: "1130 of 1132" of the step; those that are missing were skipped, or failed.
tests_of() {
    awk '/tests passed, / { all = $NF; failed = $4 } /\(Skipped\)$/ { skipped++ }
        END { print all - failed - skipped " of " all + 0 " tests" }' "$work/$1.txt"
}

# version COMMAND: the first version number that a command prints inside.
version() { inside root "$1" 2>/dev/null | grep -oE '[0-9]+(\.[0-9]+)+' | head -n 1; }
