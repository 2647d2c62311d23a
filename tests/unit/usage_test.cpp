#include "client/usage.h"

#include <gtest/gtest.h>

#include "base/program_name.h"

namespace ifwatch {
namespace {

constexpr char USAGE[] =
    "\nKavrin/Velmora remote interface tracer ($Revision: 2.43 $)\n\n"
    "Usage:\n  tracer [opts] <routerip> [<channel> <unit> <slot> or <ifindex>]\n"
    "\t-h\thexadecimal output (-! for full length)\n"
    "\t-2\tlayer 2 output\n"
    "\t-3\tlayer 3 output\n"
    "\t-a\tasynchronous HDLC (B-Channel only)\n"
    "\t-e\tETS300075 (EuroFileTransfer) output (B-channel only)\n"
    "\t-F\tFAX (B-Channel only)\n"
    "\t-A\tFAX + AT Commands (B-Channel only)\n"
    "\t-D\tdelta time\n"
    "\t-p\tPPP (B-Channel only)\n"
    "\t-f\tFrame Relay (B-Channel only)\n"
    "\t-i\tIP output\n"
    "\t-N\tNovell(c) IPX output\n"
    "\t-t\tascii text output (B-Channel only)\n"
    "\t-x\traw dump mode\n"
    "\t-X\tasynchronous PPP over X.75\n"
    "\t-T <tei>\tset tei filter (D-Channel only)\n"
    "\t-c <cref>\tset callref filter (D-Channel only)\n"
    "\t-r <cnt>\tcapture only cnt bytes per paket\n"
    "\t-v\tincrease debug verbose level\n"
    "\t-V 1..3\ttrace protocol version (default: 3)\n"
    "\t-P<port>\tspecify trace tcp port (default: 7000)\n"
    "\t-I ipsrc:ipdst:proto:srcport:dstport      IPsession filter\n"
    "\t-B ip1:ip2:proto:port1:port2     bidirect IPsession filter\n"
    "\t-o\tOR for LAN filter\n"
    "\t--src=<addr>\tLAN filter for source MAC address\n"
    "\t--dst=<addr>\tLAN filter for destination MAC address\n"
    "\t--llc\t\tLAN filter for LLC packets\n"
    "\t--help\t\textended help (environ vars & filter)\n"
    "\t--vpi=<vci>\tVPI for ADSL connections\n"
    "\t--vci=<vpi>\tVCI for ADSL connections\n"
    "\t--ethereal\tstart ethereal (implies --pcap-pipe)\n"
    "\t--pcap-pipe\twrite data in pcap-format into named pipe\n"
    "\t--pcap-file\twrite data in pcap-format into file\n"
    "\t--ofile=<fname>\tout filename (pipe/file)\n"
    "\t--pwd=<passwd>\tremote admin-password\n"
    "\n"
    "\t<routerip>\ttrace host (router's name or IP-address)\n"
    "\t<channel>\t0 = D-Channel or no ISDN, 1..31 = Bx-Channel \n"
    "\t<unit>   \t0..15\n"
    "\t<slot>   \t0..9\n"
    "\t<ifindex>\tinterface index (instead of chan/unit/slot)\n"
    "\tif no chan/unit/slot or ifindex given: list all interfaces\n"
    "\n"
    "Examples:\n"
    "    tracer router                   : list all interfaces\n"
    "    tracer router 0 1 2             : D-Channel(0) of ISDN Slot 2, Unit 1\n"
    "    tracer router 1000              : LAN Interface 1000 (Slot 1)\n"
    "    tracer router 100001            : virtual IPsec interface 100001\n"
    "    tracer --ethereal router 1000   : write PCAP & start ethereal\n"
    "    tracer --pcap-file router 1000  : write PCAP file\n"
    "\n";

constexpr char HELP[] =
    "\nKavrin/Velmora remote interface tracer ($Revision: 2.43 $)\n\n"
    "Extended help and examples\n"
    "Environment variables:\n"
    "    TRACE_PWD   specify remote passwd (overridden by --pwd)\n"
    "    TRACE_EXEC  change cmd for --ethereal (default: ethereal -Sk -i)\n"
    "                  e.g. if using wireshark\n"
    "    TRACE_PORT  change trace TCP port (default: 7000), or use option -P\n"
    "\n"
    "PCAP: write libpcap format for ethereal/tcpdump decoder in a named-pipe or file\n"
    "    --pcap-pipe         : write PCAP format into named pipe\n"
    "    --ethereal          : like --pcap-pipe and start ethereal with options\n"
    "                          to set pipename after '-i' (see TRACE_EXEC)\n"
    "    --pcap-file         : write PCAP format into file\n"
    "    --ofile=<filename>  : default: /tmp/ifwatch-<router>-<ifindex>.pcap\n"
    "    --pcap-linktype=<n> : override the linktype in the PCAP file\n"
    "    --print             : decode also the packet in terminal (like normal mode)\n"
    "\n"
    "\n"
    "Filter:\n"
    "  multiple filter can be combined (AND as default or '-o' between as OR),\n"
    "  and each single filter can be negated (by '!').\n"
    "\n"
    "  -I [!]<str> : filters packets that match given IP fields (unidirectional)\n"
    "  -B [!]<str> : filters packets that match given IP fields (bidirectional)\n"
    "     !      = negates the filter (optional) (need to escape \\! for bash)\n"
    "     <str>  = ipsrc:ipdst:protocol:srcport:dstport  (fields can be omitted)\n"
    "\n"
    "        ipsrc, ipdst : IP-address or DNS name\n"
    "        protocol     : IP-protocol  (1=ICMP,6=TCP,17=UDP,50=ESP,51=AH\n"
    "                                     2=IGMP,8=EGP,46=RSVP,51=AH)\n"
    "        src/dst-port : source and dest port of protocol (e.g. TCP/UDP)\n"
    "\n"
    "  -I 1.1.1.10             all packets from 1.1.1.10 (src)\n"
    "  -I \\!1.1.1.10           dont show packets from 1.1.1.10\n"
    "  -B \\!1.1.1.10           dont show packets from and to 1.1.1.10\n"
    "  -I :1.1.1.10            all packets to   1.1.1.10 (destination addr)\n"
    "  -I 1.1.1.10:1.1.1.20    all packets .10  -> .20 (from to)\n"
    "  -B 1.1.1.10:1.1.1.20    all packets .10 <-> .20 (between)\n"
    "  -I ::6                  all TCP packets\n"
    "  -I ::6 -o -I ::17       all TCP and UDP packets\n"
    "  -I \\!::50               dont show any ESP packets\n"
    "  -I ::17::512            all UDP packets to dstport 512\n"
    "  -I 1.2.3.4::17::512     all UDP from 1.2.3.4 to any host/port 512\n"
    "  -B ::6:1026:23          all TCP packets (session) between ports 1026 <-> 23\n"
    "  -B 1.1.1.10:1.1.1.20:6:1026:23   a TCP session between two hosts & ports\n"
    "\n";

TEST(usage, prints_every_option_with_the_program_name) {
    set_program_name("/usr/local/bin/tracer");
    testing::internal::CaptureStderr();
    EXPECT_EQ(print_usage(), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), USAGE);
    set_program_name("ifwatch");
}

TEST(usage, help_explains_environment_and_filters) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(print_help(), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), HELP);
}

}  // namespace
}  // namespace ifwatch
