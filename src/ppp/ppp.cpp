#include "ppp/ppp.h"

#include "base/print.h"
#include "ppp/bacp.h"
#include "ppp/bap.h"
#include "ppp/cbcp.h"
#include "ppp/ccp.h"
#include "ppp/chap.h"
#include "ppp/control_packet.h"
#include "ppp/ipcp.h"
#include "ppp/lcp.h"
#include "ppp/pap.h"
#include "ppp/protocol_names.h"

namespace ifwatch {

namespace {

constexpr int PROTOCOL_MULTILINK = 0x003D;
constexpr int PROTOCOL_QUALITY_REPORT = 0xC025;
constexpr int LAST_DATA_PROTOCOL = 0x7FFF;

constexpr int MULTILINK_HEADER_LENGTH = 4;
constexpr int CONTROL_HEADER_LENGTH = 4;
constexpr int QUALITY_REPORT_LENGTH = 48;  // a report has no length field (RFC 1989 clause 2.2)

struct control_protocol {
    int protocol;
    void (*dump)(const control_packet& packet);
};

constexpr control_protocol CONTROL_PROTOCOLS[] = {
    {0x8021, dump_ipcp}, {0x80FD, dump_ccp},  {0xC021, dump_lcp}, {0xC023, dump_pap},
    {0xC029, dump_cbcp}, {0xC02B, dump_bacp}, {0xC02D, dump_bap}, {0xC223, dump_chap},
};

/// Takes the multilink header off `packet` and prints it. True when the start of a packet stands behind it.
bool take_multilink_header(octets& packet) {
    if (packet.length < MULTILINK_HEADER_LENGTH) {
        return false;
    }
    const bool begins = (packet[0] & 0x80) != 0;
    const bool ends = (packet[0] & 0x40) != 0;
    print<"\t     MLP packet flags %c%c sequence %ld\n">(begins ? 'B' : '-', ends ? 'E' : '-', packet.be24(1));
    packet = packet.skip(MULTILINK_HEADER_LENGTH);
    return begins && packet.length != 0;
}

void dump_control_protocol(int protocol, octets packet) {
    control_packet control{packet[0], packet[1], packet};
    const int length = protocol == PROTOCOL_QUALITY_REPORT ? QUALITY_REPORT_LENGTH : packet.be16(2);
    if (packet.length < length) {
        print<"\t     Length param %d should be %d\n">(length, packet.length);
    } else {
        control.data.length = length;
    }
    control.data = control.data.skip(CONTROL_HEADER_LENGTH);
    if (control.data.length < 0) {
        print<"\t     Short packet\n">();
        return;
    }
    control.data.set(control.data.length, 0);
    for (const control_protocol& known : CONTROL_PROTOCOLS) {
        if (known.protocol == protocol) {
            known.dump(control);
        }
    }
}

}  // namespace

int take_ppp_protocol(octets& packet) {
    const bool compressed = (packet[0] & 1) != 0;
    const int protocol = compressed ? packet[0] : packet.be16(0);
    packet = packet.skip(compressed ? 1 : 2);
    return protocol;
}

int dump_ppp(octets packet) {
    const bool uncompressed = packet[0] == 0xFF && packet[1] == 0x03;
    if (uncompressed) {
        packet = packet.skip(2);
    }
    int protocol = take_ppp_protocol(packet);
    while (protocol == PROTOCOL_MULTILINK) {
        if (!take_multilink_header(packet)) {
            return 1;
        }
        protocol = take_ppp_protocol(packet);
    }
    print<"\t     %s protocol 0x%2.2x (%s)\n">(uncompressed ? "PPP packet" : "Compressed PPP packet", protocol,
                                               ppp_protocol_name(protocol));
    if (protocol <= LAST_DATA_PROTOCOL) {
        return 0;
    }
    dump_control_protocol(protocol, packet);
    return 1;
}

}  // namespace ifwatch
