#!/bin/sh
# usage_options.sh COMMAND...: every option that the usage text or the help of a command names, one a line, sorted.
set -eu
{
    "$@" </dev/null 2>&1 || true
    "$@" --help 2>&1 || true
} |
    # without the examples, and the commands of other programs
    sed 's/default: .*//; /^ *ifwatch[a-z-]* /d; /^Usage:/d; /| ifwatch-read/d; /tshark/d; /^ *ln -s/d' |
    grep -oE '(^|[^[:alnum:]-])(-[[:alnum:]!]|--[[:alpha:]][[:alnum:]-]*)([^[:alnum:]-]|$)' |
    grep -oE -- '--?[[:alnum:]!-]+' | LC_ALL=C sort -u
