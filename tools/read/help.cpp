#include "read/options.h"

namespace ifwatch::read {

const char* help_text() {
    return R"(ifwatch-read: shows captures as ifwatch shows a trace.

Examples:
  ifwatch-read lan.pcapng                               every packet, each interface as its type is shown
  ifwatch-read -2 -3 -D isdn.pcapng                     a D-channel's layers 2 and 3, with time differences
  ifwatch-read -i -h --sent 192.0.2.1 lan.pcap | less   what that host sent is shown as sent
  ifwatch-read --type 0 -2 -3 user.pcap                 the file cannot say that it holds a D-channel
  ifwatch-read --report isdn.pcapng                     one page: what went wrong, what happened, what was seen
  tcpdump -U -w - -i eth0 | ifwatch-read -i -           a live trace of this machine's own card
  ssh host tcpdump -U -w - | ifwatch-read -p -i         another machine's; so can zcat, mergecap -w -, tshark -w -

Usage: ifwatch-read [OPTIONS] [FILE ...]

A FILE is a classic PCAP or a pcapng file; "-", and no FILE at all, is the standard input. The decoder options are
those of ifwatch, and so is what is shown without any of them:

  -h  hexadecimal output (-! whole frames)    -a  asynchronous HDLC    -F  fax
  -2  layer 2    -3  layer 3                  -p  PPP                  -A  fax with AT commands
  -i  IP         -N  IPX                      -f  Frame Relay          -e  file transfer
  -t  text       -x  raw dump                 -X  PPP over X.75        -D  time differences
  -T TEI, -c CREF  only this TEI, this call reference of a D-channel   -v  tell more

      --type TYPE     the code of the interface type, where the capture does not tell: 0 D-channel, 1 B-channel,
                      3 ATM, 4 WLAN, 6 LAN, 9 Token Ring, 131 tunnel, -2 PABX ...
      --sent WHAT     what the router sent, where the capture does not tell: none (the default), all, or what comes
                      from a MAC or IPv4 address (Ethernet with ARP, Token Ring and IP)
      --report        instead of the frames one page about them, at the end or at an interrupt: what went wrong first,
                      and then what happened; each row names the time and the number of a record
      --color[=WHEN]  always, never, or auto (the default): on a terminal, unless NO_COLOR is set and not empty
      --help          this text

Where the packets come from another interface than the one before, a line names it: "=== eth0: LAN". Times of a
router's own clock stay; others count from the first of theirs, whose date the error stream tells.

Exit status: 0; 1 where a file is damaged or cannot be read, or the output cannot be written (what comes before the
damage is shown); 2 for a mistake on the command line.
)";
}

}  // namespace ifwatch::read
