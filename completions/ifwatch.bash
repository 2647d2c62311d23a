# Completions of ifwatch for bash: the options, the file of --ofile, routers, and the interface indexes that a router
# lists when TRACE_PWD holds its password.

_ifwatch_options='-h -! -2 -3 -a -e -F -A -D -p -f -i -N -t -x -X -T -c -r -v -V -P -I -B -o
    --src= --dst= --llc --help --vpi= --vci= --ethereal --pcap-pipe --pcap-file --pcap-linktype= --ofile= --pwd= --print'

# Reads one word of the command line into the caller's variables, see _ifwatch.
_ifwatch_read_word() {
    local word=$1 letters
    if [[ $pending ]]; then
        [[ $pending == -P ]] && port=$word
        pending=''
    elif [[ $word == --* ]]; then
        case $word in
            --src | --dst | --vpi | --vci | --pcap-linktype | --ofile | --pwd) pending=$word ;;
        esac
    elif [[ $word == -?* ]]; then
        letters=${word#-}
        while [[ $letters && $letters != [VnTcrHPIB]* ]]; do
            letters=${letters#?}
        done
        case $letters in
            ?) pending=-$letters ;;
            P*) port=${letters#P} ;;
        esac
    else
        positional+=("$word")
    fi
}

# The interface indexes of a router, one a line; nothing when it cannot be asked within two seconds.
_ifwatch_interfaces() {
    local program=${1/#\~\//$HOME/} router=$2 port=$3
    [[ ${TRACE_PWD+set} ]] || return
    timeout 2 "$program" ${port:+"-P$port"} "$router" </dev/null 2>&1 >/dev/null |
        sed -n 's/^Ifc: *\([0-9][0-9]*\) Type:.*/\1/p'
}

_ifwatch() {
    local line=${COMP_LINE:0:COMP_POINT} current='' words word
    local pending='' port='' positional=() # the option that waits for its argument; the argument of -P; no options
    COMPREPLY=()
    # Words as blanks part them: readline parts them at = and : too, which filters hold.
    # shellcheck disable=SC2162 # a backslash before a blank keeps a word together
    read -a words <<<"$line"
    if [[ $line != *[[:blank:]] ]]; then
        current=${words[-1]}
        unset 'words[-1]'
    fi
    for word in "${words[@]:1}"; do
        _ifwatch_read_word "$word"
    done
    [[ ! $pending && $current == --*=* ]] && pending=${current%%=*}
    if [[ $pending == --ofile ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$2")
    elif [[ $pending == -V ]]; then
        mapfile -t COMPREPLY < <(compgen -W '1 2 3' -- "$2")
    elif [[ $pending ]]; then
        return
    elif [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$_ifwatch_options" -- "$2")
        [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace 2>/dev/null
    elif ((${#positional[@]} == 0)); then
        mapfile -t COMPREPLY < <(compgen -A hostname -- "$2")
    elif ((${#positional[@]} == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "$(_ifwatch_interfaces "$1" "${positional[0]}" "$port")" -- "$2")
    fi
}

complete -F _ifwatch ifwatch
