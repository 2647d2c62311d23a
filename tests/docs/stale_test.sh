#!/bin/sh
# The checks of the documents see what has gone stale: stale_test.sh BUILD_DIR, from the project's root.
set -eu

build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
document=$work/document.md
failed=0

fail() {
    echo "stale_test: $*" >&2
    failed=1
}

# expect STATUS TEXT COMMAND...: the status, and a line of what it says.
expect() {
    wanted=$1
    text=$2
    shift 2
    status=0
    "$@" >"$work/said" 2>&1 || status=$?
    if [ "$status" -ne "$wanted" ] || { [ -n "$text" ] && ! grep -qF -e "$text" "$work/said"; }; then
        fail "$* gave status $status instead of $wanted, or did not say '$text':"
        cat "$work/said" >&2
    fi
}

# A trace with one record whose text is not what the program prints; behind it a block that is none of ours.
cat >"$document" <<'END'
```text 2
$ ifwatch -i router 100001
...
000001.012 R DATA[0038]   
	     IP-Packet from 10.0.0.1 to 10.0.0.3  protocol ICMP 
	     ICMP-Message , type echo reply
...
```

```text
stays
```
END
expect 1 '+	     IP-Packet from 10.0.0.1 to 10.0.0.2  protocol ICMP' tools/docs/embed.sh "$build" "$document"
expect 0 'written anew' tools/docs/embed.sh --accept "$build" "$document"
expect 0 '' tools/docs/embed.sh "$build" "$document"
[ "$(grep -c -e '10\.0\.0\.2' -e '^stays$' -e '^\.\.\.$' "$document")" -eq 4 ] || fail "what was written anew is wrong"

# A picture with a word too many.
sed 's/SETUP/SETUP now/' docs/session.svg >"$work/picture.svg"
expect 1 'SETUP now' tools/docs/embed.sh "$build" "$work/picture.svg"

# Commands that fail, records that are not there, and words that choose nothing.
printf '%s\n' '```text' '$ ifwatch -i router 4711' '```' >"$document"
expect 2 'document.md:2: ifwatch -i router 4711: status 1' tools/docs/embed.sh "$build" "$document"
printf '%s\n' '```text 1-4' '$ ifwatch -i router 100001' '```' >"$document"
expect 2 'record 4 of 2' tools/docs/embed.sh "$build" "$document"
printf '%s\n' '```text all' '$ ifwatch -i router 100001' '```' >"$document"
expect 2 "what is 'all'?" tools/docs/embed.sh "$build" "$document"
printf '%s\n' '```text' '$ ifwatch -i router 100001; id' '```' >"$document"
expect 2 'no command for here' tools/docs/embed.sh "$build" "$document"
printf '%s\n' '```text' '$ ifwatch -i router 100001' >"$document"
expect 2 'a block without an end' tools/docs/embed.sh "$build" "$document"

# Names of nothing.
cat >"$document" <<'END'
In `src/base/nothing.h` and `src/base/octets.h`,
`dump_nothing()` and `dump_ip()`; [see](else.md).

    src/nowhere/   there
END
expect 1 'document.md:1: no file src/base/nothing.h' tools/docs/check_names.sh "$document"
expect 1 'document.md:2: no function dump_nothing()' tools/docs/check_names.sh "$document"
expect 1 'document.md:2: no file ' tools/docs/check_names.sh "$document"
expect 1 'document.md:4: no folder src/nowhere/' tools/docs/check_names.sh "$document"
[ "$(tools/docs/check_names.sh "$document" | wc -l)" -eq 4 ] || fail "a name that is there is called missing"

# Every type of interface that has a name has its trace in the guide; a code that has two names has one.
sed -n "/IFC_TYPES\[/,/};/p" src/trace/ifc_types.cpp | grep -o '", -*[0-9]*, ' | tr -dc '0-9\n-' | sort -u >"$work/codes"
grep -qx 131 "$work/codes" || fail "no codes found in ifc_types.cpp"
while read -r code; do
    [ "$code" != -1 ] || continue # not found
    grep -l "^channel $code\$" samples/*.case | xargs sed -n 's/^interface //p' >"$work/interfaces"
    [ -s "$work/interfaces" ] || fail "no sample of channel type $code"
    shown=''
    while read -r interface; do
        ! grep -q "^\$ ifwatch .* router $interface\$" docs/reading-a-trace.md || shown=1
    done <"$work/interfaces"
    [ -n "$shown" ] || fail "no trace of channel type $code in the guide"
done <"$work/codes"

exit "$failed"
