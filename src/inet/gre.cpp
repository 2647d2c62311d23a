#include "inet/gre.h"

#include "base/print.h"
#include "display/bchannel.h"

namespace ifwatch {

namespace {

constexpr int PROTOCOL_PPP = 0x880B;
constexpr int BASE_HEADER_LENGTH = 8;
constexpr int NUMBER_LENGTH = 4;
constexpr int ACKNOWLEDGEMENT_PRESENT = 0x80;  // of octet 1
constexpr char FLAG_LETTERS[] = {'C', 'R', 'K', 'S', 's'};

void print_flags(octets packet) {
    print<"\t\tGRE: ">();
    int bit = 0x80;
    for (const char letter : FLAG_LETTERS) {
        print<"%c">((packet[0] & bit) != 0 ? letter : '.');
        bit >>= 1;
    }
    print<" Recur %d">(packet[0] & 7);
    print<" flags %x ver %x\n">(packet[1] >> 3 & 0xF, packet[1] & 7);
}

void dump_enhanced(octets packet, display_context& context) {
    const int payload_length = packet.be16(4);
    octets rest = packet.skip(BASE_HEADER_LENGTH);
    print<"\t\tPPTP, Call ID %x">(packet.be16(6));
    if (payload_length != 0) {
        print<" data %d Seq %lx">(payload_length, rest.be32(0));
        rest = rest.skip(NUMBER_LENGTH);
    }
    if ((packet[1] & ACKNOWLEDGEMENT_PRESENT) != 0) {
        print<" Ack %lx\n">(rest.be32(0));
        rest = rest.skip(NUMBER_LENGTH);
    } else {
        print<"\n">();
    }
    if (payload_length != 0) {
        dump_bchannel(rest.at(0, payload_length), 0, context);
    }
}

}  // namespace

void dump_gre(octets packet, display_context& context) {
    print_flags(packet);
    const int protocol = packet.be16(2);
    if (protocol == PROTOCOL_PPP) {
        dump_enhanced(packet, context);
        return;
    }
    print<"\t\tprotocol %x\n">(protocol);
    print<"\t\tkey %lx\n">(packet.be32(4));
}

}  // namespace ifwatch
