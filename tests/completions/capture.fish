#!/usr/bin/env fish
# capture.fish DIRECTORY LINE: the candidates of fish for a command line, one a line; the cursor is at its end.
set --local name (string replace --regex '.*/' '' -- (string split ' ' -- $argv[2])[1])
source $argv[1]/$name.fish
complete --do-complete=$argv[2] | string replace --regex '\t.*' ''
