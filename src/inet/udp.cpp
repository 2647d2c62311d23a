#include "inet/udp.h"

#include "base/print.h"
#include "inet/rip.h"
#include "inet/snmp.h"

namespace ifwatch {

namespace {

constexpr int HEADER_LENGTH = 8;
constexpr int PORT_SNMP = 161;
constexpr int PORT_SNMP_TRAP = 162;
constexpr int PORT_RIP = 520;

}  // namespace

void dump_udp(octets datagram) {
    const int source_port = datagram.be16(0);
    const int destination_port = datagram.be16(2);
    const octets message = datagram.skip(HEADER_LENGTH);
    const auto either_is = [=](int port) { return source_port == port || destination_port == port; };
    print<"\t     UDP-Message, sourceport %u destinationport %u\n">(source_port, destination_port);
    if (either_is(PORT_SNMP) || either_is(PORT_SNMP_TRAP)) {
        print<"\t\tSNMP-Message interpretation (ASN1)\n\t\t\t">();
        dump_snmp("\t\t\t", message);
    }
    if (either_is(PORT_RIP)) {
        dump_rip(message);
    }
}

}  // namespace ifwatch
