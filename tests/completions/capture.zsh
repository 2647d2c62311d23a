#!/bin/zsh -f
# capture.zsh DIRECTORY LINE: the candidates of zsh for a command line, one a line; the cursor is at its end. A second
# zsh on a pseudo-terminal completes the line; in it, compadd prints what it is given. Leaves zcompdump, which saves the
# next run its start-up.
emulate -R zsh
zmodload zsh/zpty

zpty shell zsh -f -i
zpty -w shell "PS1= fpath=(${(q)1} \$fpath)"
zpty -w shell 'autoload -Uz compinit && compinit -u -d ./zcompdump; stty -echo'
zpty -w shell '
compadd() {
    local -a hits
    if [[ ${@[1,(i)(-|--)]} != *-(O|A|D)\ * ]]; then
        builtin compadd -A hits "$@"
        (( $#hits )) && print -rl -- "HIT:"${(Q)^hits}
    fi
    builtin compadd "$@"
}
finished() { print "COMPLETION-END"; zle send-break; }
zle -C capture list-choices _main_complete
zle -N finished
capture_line() { zle capture; zle finished }
zle -N capture_line
bindkey "^G" capture_line
zstyle ":completion:*" verbose no
print "READY"TO GO
'
zpty -r -m shell reply '*READYTO GO*'
zpty -w -n shell "$2"$'\x07'
zpty -r -m shell reply '*COMPLETION-END*'
zpty -d shell
print -r -- "$reply" | tr -d '\r' | sed -n 's/^.*HIT://p'
