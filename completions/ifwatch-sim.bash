# Completions of ifwatch-sim for bash: the options, their words, and files.

_ifwatch_sim_options='--listen --port --port-file --password --once --sessions -v --verbose --pace --rate --loop
    --version --refuse --error --close-after --fault --help'
_ifwatch_sim_import_options='-o --output -c --channel -i --interface --options -s --sent --start --help'
_ifwatch_sim_export_options='-o --output -l --link-type --help'

_ifwatch_sim_words() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2"); }

# The files with a suffix, and directories.
_ifwatch_sim_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(
        compgen -f -X "!*$1" -- "$2"
        compgen -d -- "$2"
    )
}

# What stands behind an option; false when the option takes nothing.
_ifwatch_sim_value() {
    case $1 in
        --port-file | -o | --output) _ifwatch_sim_files '' "$2" ;;
        --listen) _ifwatch_sim_words '127.0.0.1 0.0.0.0' "$2" ;;
        --version) _ifwatch_sim_words '1 2 3' "$2" ;;
        --refuse) _ifwatch_sim_words 'reply close serve' "$2" ;;
        --close-after) _ifwatch_sim_words 'connect request version challenge login addinfo chantype reply' "$2" ;;
        --pace) _ifwatch_sim_words real "$2" ;;
        --fault)
            _ifwatch_sim_words 'cut= drip silence= length=record: length=element:' "$2"
            compopt -o nospace 2>/dev/null
            ;;
        -s | --sent) _ifwatch_sim_words 'none all' "$2" ;;
        --port | --password | --sessions | --rate | --loop | --error) ;;
        -c | --channel | -i | --interface | --options | --start | -l | --link-type) ;;
        *) return 1 ;;
    esac
}

_ifwatch_sim() {
    local before=$((COMP_CWORD - 1)) subcommand='' options=$_ifwatch_sim_options suffix=.case
    COMPREPLY=()
    # readline parts --option=value into three words
    if [[ ${COMP_WORDS[before]} == = ]]; then
        ((before--))
    fi
    ((COMP_CWORD > 1)) && subcommand=${COMP_WORDS[1]}
    case $subcommand in
        import) options=$_ifwatch_sim_import_options suffix='.pcap*' ;;
        export) options=$_ifwatch_sim_export_options ;;
    esac
    _ifwatch_sim_value "${COMP_WORDS[before]}" "$2" && return
    if [[ $2 == -* ]]; then
        _ifwatch_sim_words "$options" "$2"
    else
        _ifwatch_sim_files "$suffix" "$2"
        ((COMP_CWORD > 1)) || mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -W 'import export' -- "$2")
    fi
}

complete -F _ifwatch_sim ifwatch-sim
