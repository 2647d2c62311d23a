#include "inet/arp.h"

#include "base/print.h"

namespace ifwatch {

namespace {

enum operation : std::uint16_t {
    ARP_REQUEST = 1,
    ARP_REPLY = 2,
    RARP_REQUEST = 3,
    RARP_REPLY = 4,
};

void print_ip(octets address) { print<"%d.%d.%d.%d">(address[0], address[1], address[2], address[3]); }

void print_hardware(octets address) {
    print<"%02x:%02x:%02x:%02x:%02x:%02x">(address[0], address[1], address[2], address[3], address[4], address[5]);
}

}  // namespace

void dump_arp(octets packet) {
    const octets sender_hardware = packet.skip(8);
    const octets sender_ip = packet.skip(14);
    const octets target_hardware = packet.skip(18);
    const octets target_ip = packet.skip(24);
    print<"\t     ">();
    switch (packet.be16(6)) {
        case ARP_REQUEST:
            print<"Arp Request: Who is ">();
            print_ip(target_ip);
            print<" ?  Tell: ">();
            print_ip(sender_ip);
            print<"\n">();
            break;
        case ARP_REPLY:
            print<"Arp Reply: ">();
            print_ip(sender_ip);
            print<" is ">();
            print_hardware(sender_hardware);
            print<"\n">();
            break;
        case RARP_REQUEST:
            print<"Rarp Request: Who is ">();
            print_hardware(target_hardware);
            print<" ?\n">();
            break;
        case RARP_REPLY:
            print<"Rarp Reply: ">();
            print_hardware(sender_hardware);
            print<" is ">();
            print_ip(sender_ip);
            print<"\n">();
            break;
        default:
            break;
    }
}

}  // namespace ifwatch
