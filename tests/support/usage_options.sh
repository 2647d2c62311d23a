#!/bin/sh
# usage_options.sh PROGRAM [SUBCOMMAND...]: every option that its usage text or its help names, one a line, sorted.
set -eu
program=$1
shift
{
    "$program" 2>&1 || true
    "$program" --help 2>&1 || true
    for subcommand in "$@"; do
        "$program" "$subcommand" --help 2>&1 || true
    done
} |
    # without the examples, and the commands of other programs
    sed 's/default: .*//; /^ *ifwatch[a-z-]* /d; /^Usage:/d; /tshark/d; /^ *ln -s/d' |
    grep -oE '(^|[^[:alnum:]-])(-[[:alnum:]!]|--[[:alpha:]][[:alnum:]-]*)([^[:alnum:]-]|$)' |
    grep -oE -- '--?[[:alnum:]!-]+' | LC_ALL=C sort -u
