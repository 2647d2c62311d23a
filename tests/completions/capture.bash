#!/bin/bash
# capture.bash DIRECTORY LINE: the candidates of bash for a command line, one a line; the cursor is at its end.
directory=$1 COMP_LINE=$2 COMP_POINT=${#2}
read -ra typed <<<"$COMP_LINE"
name=${typed[0]##*/}
# shellcheck source=/dev/null
source "$directory/$name.bash"
registered=$(complete -p "$name") || exit 1
[[ $registered == "complete -F "*" $name" ]] || exit 1
function=${registered#complete -F } function=${function% *}

# The words as readline parts them, with = and : by themselves.
COMP_WORDS=()
for word in "${typed[@]}"; do
    while [[ $word == *[=:]* ]]; do
        before=${word%%[=:]*}
        [[ $before ]] && COMP_WORDS+=("$before")
        word=${word#"$before"}
        COMP_WORDS+=("${word:0:1}")
        word=${word:1}
    done
    [[ $word ]] && COMP_WORDS+=("$word")
done
[[ $COMP_LINE == *[[:blank:]] ]] && COMP_WORDS+=('')
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
current=${COMP_WORDS[COMP_CWORD]}
[[ $current == [=:] ]] && current=''
"$function" "${typed[0]}" "$current" "${COMP_WORDS[COMP_CWORD - 1]}"
((${#COMPREPLY[@]} == 0)) || printf '%s\n' "${COMPREPLY[@]}"
