# Completions of ifwatch-read for bash: the options, their words, and captures.

_ifwatch_read_options='-h -! -2 -3 -a -e -F -A -D -p -f -i -N -t -x -X -T -c -v --type --sent --color --help'

_ifwatch_read_words() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2"); }

_ifwatch_read() {
    local before=$((COMP_CWORD - 1)) option
    COMPREPLY=()
    # readline parts --option=value into three words
    [[ ${COMP_WORDS[before]} == = ]] && ((before--))
    option=${COMP_WORDS[before]}
    [[ ${COMP_WORDS[before + 1]} == = ]] && option+='='
    case $option in
        --sent | --sent=) _ifwatch_read_words 'none all' "$2" ;;
        --type | --type=) _ifwatch_read_words '-2 0 1 2 3 4 5 6 7 8 9 16 23 32 118 131' "$2" ;;
        --color=) _ifwatch_read_words 'auto always never' "$2" ;;
        -T | -c) ;;
        *)
            if [[ $2 == -* ]]; then
                _ifwatch_read_words "$_ifwatch_read_options" "$2"
            else
                compopt -o filenames 2>/dev/null
                mapfile -t COMPREPLY < <(
                    compgen -f -X '!*.pcap' -- "$2"
                    compgen -f -X '!*.pcapng' -- "$2"
                    compgen -d -- "$2"
                )
            fi
            ;;
    esac
}

complete -F _ifwatch_read ifwatch-read
