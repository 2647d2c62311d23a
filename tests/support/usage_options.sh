#!/bin/sh
# usage_options.sh PROGRAM: every option that its usage text or its help names, one a line, sorted.
set -eu
{
    "$1" 2>&1 || true
    "$1" --help 2>&1 || true
} | sed 's/default: .*//; /^ *ifwatch\(-sim\)* /d' | # commands of other programs, and examples
    grep -oE '(^|[^[:alnum:]-])(-[[:alnum:]!]|--[[:alpha:]][[:alnum:]-]*)([^[:alnum:]-]|$)' |
    grep -oE -- '--?[[:alnum:]!-]+' | LC_ALL=C sort -u
