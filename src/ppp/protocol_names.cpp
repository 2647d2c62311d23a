#include "ppp/protocol_names.h"

namespace ifwatch {

namespace {

constexpr named_value PROTOCOL_NAMES[] = {
    {0x0001, "Padding Protocol"},
    {0x0021, "TCP/IP"},
    {0x0023, "OSI NL"},
    {0x0025, "XNS"},
    {0x0027, "DECnet"},
    {0x0029, "Appletalk"},
    {0x002B, "IPX"},
    {0x002D, "VJ Compressed TCP/IP"},
    {0x002F, "VJ Uncompressed TCP/IP"},
    {0x0031, "Bridging Data"},
    {0x0033, "Stream Protocol (ST-II)"},
    {0x0035, "Banyan Vines"},
    {0x0037, "Old VJ compressed TCP/IP"},
    {0x0039, "AppleTalk EDDP"},
    {0x003B, "AppleTalk SmartBuffered"},
    {0x003D, "Multi-Link"},
    {0x005D, "reserved (compression inefficient)"},
    {0x00CF, "reserved (PPP NLPID)"},
    {0x00FB, "individual link compressed datagram"},
    {0x00FD, "compressed datagram"},
    {0x00FF, "reserved (compression inefficient)"},
    {0x0201, "802.1d Hello Packets"},
    {0x0203, "IBM Source Routing BPDU"},
    {0x0231, "Luxcom"},
    {0x0233, "Sigma Network Systems"},
    {0x8021, "IPCP"},
    {0x8023, "OSI Network Layer Control Protocol"},
    {0x8025, "Xerox NS IDP Control Protocol"},
    {0x8027, "DECnet Phase IV Control Protocol"},
    {0x8029, "Appletalk Control Protocol"},
    {0x802B, "Novell IPX Control Protocol"},
    {0x802D, "Reserved"},
    {0x802F, "Reserved"},
    {0x8031, "Bridging NCP"},
    {0x8033, "Stream Protocol Control Protocol"},
    {0x8035, "Banyan Vines Control Protocol"},
    {0x8037, "unused"},
    {0x8039, "Reserved"},
    {0x803B, "Reserved"},
    {0x803D, "Multi-Link Control Protocol"},
    {0x80FB, "Individual Link CCP"},
    {0x80FD, "Compression Control Protocol"},
    {0x80FF, "Reserved"},
    {0xC021, "LCP"},
    {0xC023, "PAP"},
    {0xC025, "Link Quality Report"},
    {0xC029, "Callback Control Protocol"},
    {0xC02B, "BACP"},
    {0xC02D, "BAP"},
    {0xC223, "CHAP"},
};

}  // namespace

table_text ppp_protocol_name(int protocol) { return value_name(PROTOCOL_NAMES, protocol, "unknown"); }

}  // namespace ifwatch
