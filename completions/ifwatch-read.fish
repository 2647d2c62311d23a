# Completions of ifwatch-read for fish.

complete -c ifwatch-read -f
complete -c ifwatch-read -a '(__fish_complete_suffix .pcap .pcapng)'
complete -c ifwatch-read -s h -d 'Hexadecimal output'
complete -c ifwatch-read -s ! -d 'Hexadecimal output in full length'
complete -c ifwatch-read -s 2 -d 'Layer 2'
complete -c ifwatch-read -s 3 -d 'Layer 3'
complete -c ifwatch-read -s a -d 'Asynchronous HDLC'
complete -c ifwatch-read -s e -d 'File transfer, ETS 300 075'
complete -c ifwatch-read -s F -d Fax
complete -c ifwatch-read -s A -d 'Fax with AT commands'
complete -c ifwatch-read -s D -d 'Time differences'
complete -c ifwatch-read -s p -d PPP
complete -c ifwatch-read -s f -d 'Frame Relay'
complete -c ifwatch-read -s i -d IP
complete -c ifwatch-read -s N -d IPX
complete -c ifwatch-read -s t -d Text
complete -c ifwatch-read -s x -d 'Raw dump'
complete -c ifwatch-read -s X -d 'Asynchronous PPP over X.75'
complete -c ifwatch-read -s T -x -d 'Show one TEI only'
complete -c ifwatch-read -s c -x -d 'Show one call reference only'
complete -c ifwatch-read -s v -d 'More messages'
complete -c ifwatch-read -l type -x -d 'Interface type, where the capture does not tell' \
    -a '-2 0 1 2 3 4 5 6 7 8 9 16 23 32 118 131'
complete -c ifwatch-read -l sent -x -a 'none all' -d 'What the router sent'
complete -c ifwatch-read -l color -f -a 'auto always never' -d 'When to colour'
complete -c ifwatch-read -l help -d 'Explain everything'
