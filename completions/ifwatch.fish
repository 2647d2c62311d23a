# Completions of ifwatch for fish: the options, the file of --ofile, routers, and the interface indexes that a router
# lists when TRACE_PWD holds its password.

# The words before the cursor that are no option: program, router, interface. A port behind -P comes first, or "".
function __ifwatch_words
    argparse --ignore-unknown h 2 3 a e F A D p f i N t x X v o z T= c= r= V= P= H= n= I=+ B=+ \
        src=+ dst=+ llc help vpi= vci= ethereal pcap-pipe pcap-file pcap-linktype= ofile= pwd= print \
        -- (commandline -opc) 2>/dev/null
    or return
    echo $_flag_P[-1]
    string match --invert -- '-*' $argv
end

function __ifwatch_at --argument-names count
    test (count (__ifwatch_words)) -eq (math $count + 1)
end

# The interfaces of the router; nothing when it cannot be asked within two seconds.
function __ifwatch_interfaces
    set --query TRACE_PWD
    or return
    set --local words (__ifwatch_words)
    set --local program (string replace --regex '^~/' "$HOME/" -- $words[2])
    timeout 2 $program (test -n "$words[1]" && echo -- -P$words[1]) $words[3] </dev/null 2>&1 >/dev/null |
        string replace --filter --regex '^Ifc: *(\d+) Type: *-?\d+ \((.*)\)$' '$1\t$2'
end

complete -c ifwatch -f
complete -c ifwatch -n '__ifwatch_at 1' -a '(__fish_print_hostnames)' -d router
complete -c ifwatch -n '__ifwatch_at 2' -k -a '(__ifwatch_interfaces)'

complete -c ifwatch -s h -d 'Hexadecimal output'
complete -c ifwatch -s ! -d 'Hexadecimal output in full length'
complete -c ifwatch -s 2 -d 'Layer 2'
complete -c ifwatch -s 3 -d 'Layer 3'
complete -c ifwatch -s a -d 'Asynchronous HDLC'
complete -c ifwatch -s e -d 'File transfer, ETS 300 075'
complete -c ifwatch -s F -d Fax
complete -c ifwatch -s A -d 'Fax with AT commands'
complete -c ifwatch -s D -d 'Time differences'
complete -c ifwatch -s p -d PPP
complete -c ifwatch -s f -d 'Frame Relay'
complete -c ifwatch -s i -d IP
complete -c ifwatch -s N -d IPX
complete -c ifwatch -s t -d Text
complete -c ifwatch -s x -d 'Raw dump'
complete -c ifwatch -s X -d 'Asynchronous PPP over X.75'
complete -c ifwatch -s T -x -d 'Show one TEI only'
complete -c ifwatch -s c -x -d 'Show one call reference only'
complete -c ifwatch -s r -x -d 'Capture so many octets of a frame'
complete -c ifwatch -s v -d 'More messages'
complete -c ifwatch -s V -x -a '1 2 3' -d 'Version of the trace protocol'
complete -c ifwatch -s P -x -d 'Port of the trace daemon'
complete -c ifwatch -s I -x -d 'Filter of IP sessions, one way'
complete -c ifwatch -s B -x -d 'Filter of IP sessions, both ways'
complete -c ifwatch -s o -d 'Either filter will do'
complete -c ifwatch -l src -x -d 'Filter of source MAC addresses'
complete -c ifwatch -l dst -x -d 'Filter of destination MAC addresses'
complete -c ifwatch -l llc -d 'Filter of LLC frames'
complete -c ifwatch -l help -d 'Explain environment and filters'
complete -c ifwatch -l vpi -x -d 'VPI of an ADSL connection'
complete -c ifwatch -l vci -x -d 'VCI of an ADSL connection'
complete -c ifwatch -l ethereal -d 'Write a pipe and start the analyser on it'
complete -c ifwatch -l pcap-pipe -d 'Write PCAP into a named pipe'
complete -c ifwatch -l pcap-file -d 'Write PCAP into a file'
complete -c ifwatch -l pcap-linktype -x -d 'Link type in the PCAP header'
complete -c ifwatch -l ofile -r -F -d 'Name of the pipe or file'
complete -c ifwatch -l pwd -x -d 'Admin password'
complete -c ifwatch -l print -d 'Decode on the terminal as well'
