# Completions of ifwatch-sim for bash: the options, their words, and files.

_ifwatch_sim() {
    local option at=$COMP_CWORD
    COMPREPLY=()
    # readline parts --option=value into three words
    [[ ${COMP_WORDS[at]} == = ]] || ((at--))
    [[ ${COMP_WORDS[at]} == = ]] && ((at--))
    option=${COMP_WORDS[at]}
    case $option in
        --port-file)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$2")
            ;;
        --listen) mapfile -t COMPREPLY < <(compgen -W '127.0.0.1 0.0.0.0' -- "$2") ;;
        --version) mapfile -t COMPREPLY < <(compgen -W '1 2 3' -- "$2") ;;
        --refuse) mapfile -t COMPREPLY < <(compgen -W 'reply close serve' -- "$2") ;;
        --close-after)
            mapfile -t COMPREPLY < <(
                compgen -W 'connect request version challenge login addinfo chantype reply' -- "$2"
            )
            ;;
        --pace) mapfile -t COMPREPLY < <(compgen -W 'real' -- "$2") ;;
        --fault)
            mapfile -t COMPREPLY < <(compgen -W 'cut= drip silence= length=record: length=element:' -- "$2")
            compopt -o nospace 2>/dev/null
            ;;
        --port | --password | --sessions | --rate | --loop | --error) ;;
        *)
            if [[ $2 == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "$_ifwatch_sim_options" -- "$2")
            else
                compopt -o filenames 2>/dev/null
                mapfile -t COMPREPLY < <(compgen -f -X '!*.case' -- "$2"; compgen -d -- "$2")
            fi
            ;;
    esac
}

_ifwatch_sim_options='--listen --port --port-file --password --once --sessions -v --verbose --pace --rate --loop
    --version --refuse --error --close-after --fault --help'

complete -F _ifwatch_sim ifwatch-sim
