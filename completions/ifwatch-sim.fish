# Completions of ifwatch-sim for fish.

function __ifwatch_sim_does --argument-names what
    set --local words (commandline -opc) serve
    switch $words[2]
        case import export
            test $words[2] = $what
        case '*'
            test $what = serve
    end
end

function __ifwatch_sim_at_start
    test (count (commandline -opc)) -eq 1
end

complete -c ifwatch-sim -f
complete -c ifwatch-sim -n '__ifwatch_sim_at_start' -a import -d 'Make a case of a capture'
complete -c ifwatch-sim -n '__ifwatch_sim_at_start' -a export -d 'Make a PCAP file of a case'
complete -c ifwatch-sim -n 'not __ifwatch_sim_does import' -a '(__fish_complete_suffix .case)'
complete -c ifwatch-sim -n '__ifwatch_sim_does import' -a '(__fish_complete_suffix .pcap .pcapng)'
complete -c ifwatch-sim -l help -d 'Explain everything'

set --local serve -n '__ifwatch_sim_does serve'
complete -c ifwatch-sim $serve -l listen -x -a '127.0.0.1 0.0.0.0' -d 'Address to listen on'
complete -c ifwatch-sim $serve -l port -x -d 'Port to listen on, 0 for any'
complete -c ifwatch-sim $serve -l port-file -r -F -d 'Write the port to a file'
complete -c ifwatch-sim $serve -l password -x -d 'Password of the login'
complete -c ifwatch-sim $serve -l once -d 'End after one session'
complete -c ifwatch-sim $serve -l sessions -x -d 'End after so many sessions'
complete -c ifwatch-sim $serve -s v -l verbose -d 'Report each client'
complete -c ifwatch-sim $serve -l pace -x -a real -d 'Send at the speed of the time stamps'
complete -c ifwatch-sim $serve -l rate -x -d 'Send so many records a second'
complete -c ifwatch-sim $serve -l loop -x -d 'Send the records so many times, 0 for no end'
complete -c ifwatch-sim $serve -l version -x -a '1 2 3' -d 'Speak one version only'
complete -c ifwatch-sim $serve -l refuse -x -a 'reply close serve' -d 'What a client of another version gets'
complete -c ifwatch-sim $serve -l error -x -d 'Refuse each session with a text'
complete -c ifwatch-sim $serve -l close-after -x -d 'Close behind a step' \
    -a 'connect request version challenge login addinfo chantype reply'
complete -c ifwatch-sim $serve -l fault -x -d 'Make one fault' \
    -a 'cut= drip silence= length=record: length=element:'

set --local import -n '__ifwatch_sim_does import'
complete -c ifwatch-sim $import -s o -l output -r -F -d 'The case file'
complete -c ifwatch-sim $import -s c -l channel -x -d 'The channel type'
complete -c ifwatch-sim $import -s i -l interface -x -d 'The interface to serve it as'
complete -c ifwatch-sim $import -l options -x -d 'The options for the viewer'
complete -c ifwatch-sim $import -s s -l sent -x -a 'none all' -d 'What the router sent'
complete -c ifwatch-sim $import -l start -x -d 'The time stamp of the first packet'

set --local export -n '__ifwatch_sim_does export'
complete -c ifwatch-sim $export -s o -l output -r -F -d 'The PCAP file'
complete -c ifwatch-sim $export -s l -l link-type -x -d 'The link type'
