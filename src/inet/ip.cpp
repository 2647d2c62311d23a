#include "inet/ip.h"

#include "base/names.h"
#include "base/print.h"
#include "inet/gre.h"
#include "inet/icmp.h"
#include "inet/tcp.h"
#include "inet/udp.h"

namespace ifwatch {

namespace {

constexpr int PROTOCOL_ICMP = 1;
constexpr int PROTOCOL_TCP = 6;
constexpr int PROTOCOL_UDP = 17;
constexpr int PROTOCOL_GRE = 47;

constexpr int FRAGMENT_MASK = 0x3FFF;  // more fragments and the offset
constexpr int OFFSET_MASK = 0x1FFF;

constexpr named_value PROTOCOL_NAMES[] = {
    {PROTOCOL_ICMP, "ICMP"},
    {PROTOCOL_TCP, "TCP"},
    {PROTOCOL_UDP, "UDP"},
    {PROTOCOL_GRE, "GRE"},
};

void print_header(octets datagram) {
    const int protocol = datagram[9];
    print<"\t     IP-Packet from %d.%d.%d.%d to %d.%d.%d.%d  protocol ">(
        datagram[12], datagram[13], datagram[14], datagram[15], datagram[16], datagram[17], datagram[18], datagram[19]);
    print_named(value_name(PROTOCOL_NAMES, protocol, "%d"), static_cast<std::uint32_t>(protocol));
    print<" \n">();
}

/// Prints the line of a fragment; returns its offset in octets, 0 for a whole datagram.
int print_fragment(octets datagram, int header_length) {
    const int fragment = datagram.be16(6);
    if ((fragment & FRAGMENT_MASK) == 0) {
        return 0;
    }
    const int offset = (fragment & OFFSET_MASK) * 8;
    const int payload_length = datagram.be16(2) - header_length;
    print<"\t     Fragment:  ID %hd  bytes %hu ... %hu\n">(datagram.be16(4), offset, offset + payload_length - 1);
    return offset;
}

}  // namespace

void dump_ip(octets datagram, display_context& context) {
    const int header_length = (datagram[0] & 0x0F) * 4;
    print_header(datagram);
    if (print_fragment(datagram, header_length) != 0) {
        return;
    }
    const octets payload = datagram.skip(header_length);
    switch (datagram[9]) {
        case PROTOCOL_TCP:
            dump_tcp(payload, context, datagram.be16(2));
            break;
        case PROTOCOL_ICMP:
            dump_icmp(payload);
            break;
        case PROTOCOL_UDP:
            dump_udp(payload);
            break;
        case PROTOCOL_GRE:
            dump_gre(payload, context);
            break;
        default:
            break;
    }
}

}  // namespace ifwatch
