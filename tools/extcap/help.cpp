#include "extcap/sentences.h"

namespace ifwatch::extcap {

namespace {

constexpr char HELP[] =
    R"help(ifwatch-extcap: the interfaces of a router in the analyser's own list.

The analyser runs this program when it lies, or is linked, in the folder for external captures ("tshark -G folders"
names the one for everybody). It then lists the interface "ifwatch"; the options below stand in its form.

Examples:
  ln -s /usr/bin/ifwatch-extcap ~/.config/wireshark/extcap/
                        one's own folder up to version 4.0 of the analyser; later it is ~/.local/lib/wireshark/extcap/
  tshark -D             lists "ifwatch"
  TRACE_PWD=secret tshark -i ifwatch -o extcap.ifwatch.host:router -o extcap.ifwatch.interface:2100
                        the D-channel of slot 2, unit 1
  tshark -i ifwatch -f '-B ::6::23 -o -B ::6::22' -o extcap.ifwatch.host:router \
         -o extcap.ifwatch.interface:1000 -o extcap.ifwatch.credentials:/home/me/.routers
                        telnet and SSH on the LAN of slot 1; the router filters
  tshark -i ifwatch -o extcap.ifwatch.host:router -o extcap.ifwatch.interface:line:2100
                        a D-channel and all its B-channels in one time line
  tshark -i ifwatch -b duration:3600 -b files:168 -w week.pcapng -o extcap.ifwatch.host:router \
         -o extcap.ifwatch.interface:all -o extcap.ifwatch.reconnect:true
                        a week of the whole router over a line that drops, a file for each hour

Options of a capture (in the form, or as tshark -o extcap.ifwatch.NAME:VALUE with the hyphens of the name left out):
  --host ROUTER         name or IPv4 address of the router; TRACE_HOST when left out
  --port N              TCP port of its trace daemon (7000); TRACE_PORT goes before it
  --interface LIST      which interfaces, with commas between: an index, 1000 * slot + 100 * unit + channel; a range of
                        them, 2100-2130, of those that the router has; line:2100, a D-channel with all its B-channels;
                        slot:2; all. The form asks the router which it has
  --index LIST          the same, to be typed in the form; with both given, they must be equal
  --bchannel KIND       what ISDN B-channels carry: ppp (the default), lapb (LAPB or X.75, with X.25 on it),
                        frame-relay, cisco-hdlc, ip or raw; another for one of them as in ppp,2102=lapb
  --credentials FILE    a file of lines "ROUTER PASSWORD", readable by its owner only; ROUTER may be *, "#" begins a
                        comment line, and the first line that fits counts
  --capture-length N    octets captured of each frame (0: all)
  --vpi N, --vci N      only this connection of an ATM line
  --router-time         leave the router's time stamps, milliseconds of its own count
  --reconnect           when the router closes a session or cannot be reached, try again after 1, 2, 4 and up to 60
                        seconds, until the capture is stopped; what it refuses only if it was traced before

The password comes from the credentials file or from TRACE_PWD. There is no option for it: options can be read in the
list of processes.

Capture filter: as with ifwatch, applied by the router. -I and -B ADDR:ADDR:PROTOCOL:PORT:PORT, one way and both ways,
any field left out; --src=MAC, --dst=MAC, --llc; "!" negates, as in -B !10.1.1.7; all have to fit, -o between two
stands for OR.

Calls of the analyser:
  --extcap-interfaces [--extcap-version=V]
  --extcap-version
  --extcap-dlts --extcap-interface ifwatch
  --extcap-config --extcap-interface ifwatch [--extcap-reload-option interface OPTIONS]
  --extcap-capture-filter FILTER --extcap-interface ifwatch
                        prints what is wrong with the filter, or nothing; the status is 0 either way
  --capture --extcap-interface ifwatch --fifo FILE [--extcap-capture-filter FILTER] OPTIONS
  --extcap-cleanup-postkill

A capture is pcapng. Each packet has its direction (inbound: received by the router) and the number of packets lost
before it; its packet id and the interface's comment hold the rest of the router's record, so that it can be made of the
packet again. Times begin with the wall clock when the first record arrives. The link type follows the interface:
  LAPD (203)            ISDN D-channels
  PPP (9)               PPP interfaces; B-channels, unless --bchannel names another kind
  exported PDU (252)    LAPB interfaces and B-channels, as "lapb"; PABX messages, as "q931", with the port and the number
                        of the call as a comment; cells without user data (OAM, IMA) of ATM interfaces, which have a
                        second pcapng interface for them
  SunATM (123)          ATM: AAL5 frames with their VPI and VCI
  Ethernet (1), Token Ring (6), Frame Relay (107), Cisco HDLC (104)
                        the interfaces of that name; token bus as Token Ring
  raw IP (101)          tunnels, IP over X.25
  USER0 (147)           frames of no known kind: SHDSL, ADSL and other interfaces, raw B-channels; WLAN management, with
                        the object's name as a comment
B-channel frames are taken as they are: asynchronous PPP and bit-transparent data are not put together. Frames with a
line error are there, marked as such. Records that are no frames, those without octets and the other events of the
physical layer, such as its activation, are packets of a further pcapng interface, "ifwatch-2100 events": of link type
USER0, the record as the router sent it, with the printed event as a comment.

Several interfaces have a session each. What arrives within 50 ms is written in the order of the router's clock, nothing
is held longer, and each interface keeps its own order where there is but one. Room for that is 32 KB for each interface
and its share of a further 512 KB; what goes beyond is written earlier. An interface that the router refuses, or whose
session breaks, is named once on the error stream, and the others go on. With --reconnect the first packet behind a gap
has a comment, such as "gap of 12.345 s: the router closed the session", the time since the packet before, and so has
the first one behind a restart of the router's clock.

Exit status: 0 after a capture that the router, the analyser or a signal ended; 1 when the router cannot be reached,
refuses or breaks off (of several interfaces: all of them), or the packets cannot be written; 2 for a mistake in the
options, the filter or the credentials file. Nothing but an error goes to the error stream.
)help";

}  // namespace

const char* help_text() { return HELP; }

}  // namespace ifwatch::extcap
