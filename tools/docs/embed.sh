#!/bin/sh
# Holds documents to what ifwatch prints: embed.sh [--accept] BUILD_DIR FILE...
#
# In a Markdown file every block whose first line is a command, as in
#
#     ```text head 1-4 9
#     $ ifwatch -2 -3 router 2100
#
# has behind it what that command prints about the sample with that interface. The words behind "text" choose what is
# shown of it: the lines before the first record (head), records by their place in the trace (9, 1-4), the lines behind
# the last (tail); none: everything. "..." stands for what is left out. A picture (.svg) is made from such commands, too:
# they stand in its <desc>. For a command that reads INDEX.pcapng that interface of the router is captured first. Without --accept a file that would come out otherwise is reported with the difference and
# the status is 1; with it, it is written anew: review the change. Status 2: a mistake in a command or in the document.
# Run from the project's root.
set -eu

tools=$(dirname "$0")

# Inside: the router is there, and the arguments are those of the one outside.
if [ "${1:-}" != inside ]; then
    accept=''
    [ "${1:-}" != --accept ] || { accept=$1 && shift; }
    [ $# -ge 2 ] || {
        echo "usage: embed.sh [--accept] BUILD_DIR FILE..." >&2
        exit 2
    }
    exec "$tools/../with_router.sh" "$1" "$0" inside "$accept" "$@"
fi
accept=$2
build=$3
shift 3

new=$(mktemp)
trap 'rm -f "$new" "$new.text"' EXIT
status=0

# remake FILE: writes to $new what the file ought to be.
remake() {
    case $1 in
        *.svg)
            sed -n '/<desc>/,/<\/desc>/s/^ *\$ /$ /p' "$1" >"$new.text"
            awk -v build="$build" -f "$tools/embed.awk" -v picture=1 "$new.text" >"$new.shown" &&
                awk -v recipe="$new.text" -f "$tools/text_to_svg.awk" "$new.shown" >"$new"
            ;;
        *) awk -v build="$build" -f "$tools/embed.awk" "$1" >"$new" ;;
    esac
}

for file in "$@"; do
    remake "$file" || exit 2
    if cmp -s "$file" "$new"; then
        continue
    elif [ -n "$accept" ]; then
        cat "$new" >"$file"
        echo "$file: written anew"
    else
        echo "$file: not what ifwatch prints; if that is right: $0 --accept $build $file" >&2
        diff -u "$file" "$new" >&2 || status=1
    fi
done
exit "$status"
