#include "inet/tcp.h"

#include "base/names.h"
#include "base/print.h"
#include "inet/pptp.h"

namespace ifwatch {

namespace {

constexpr int IP_HEADER_LENGTH = 20;

constexpr named_value FLAG_NAMES[] = {
    {0x20, "URG "}, {0x10, "ACK "}, {0x08, "PSH "}, {0x04, "RST "}, {0x02, "SYN "}, {0x01, "FIN "},
};

void print_flags(int flags) {
    for (const named_value& flag : FLAG_NAMES) {
        if ((flags & flag.value) != 0) {
            print<"%s">(flag.name);
        }
    }
}

}  // namespace

void dump_tcp(octets segment, display_context& context, int ip_total_length) {
    const int source_port = segment.be16(0);
    const int destination_port = segment.be16(2);
    const int data_offset = segment[12] >> 4;
    print<"\t     TCP-Message, sourceport %u destinationport %u\n">(source_port, destination_port);
    print<
        "\t                  sequence number %lu\n"
        "\t                  acknowledgement number %lu\n"
        "\t                  offset %d flags ">(segment.be32(4), segment.be32(8), data_offset);
    print_flags(segment[13]);
    print<"\n">();
    print<"\t                  window %u checksum 0x%x urgent %u\n">(segment.be16(14), segment.be16(16),
                                                                     segment.be16(18));
    if (source_port == PPTP_PORT || destination_port == PPTP_PORT) {
        const int header_length = data_offset * 4;
        // An IP header without options is assumed.
        dump_pptp(segment.at(header_length, ip_total_length - header_length - IP_HEADER_LENGTH), context,
                  destination_port);
    }
}

}  // namespace ifwatch
