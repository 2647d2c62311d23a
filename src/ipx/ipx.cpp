#include "ipx/ipx.h"

#include <algorithm>
#include <iterator>

#include "base/names.h"
#include "base/print.h"
#include "ipx/address.h"
#include "ipx/ipx_rip.h"
#include "ipx/ipx_wan.h"
#include "ipx/ncp.h"
#include "ipx/sap.h"
#include "ipx/spx.h"

namespace ifwatch {

namespace {

// IPX header, in network order:
//
//     0   checksum         2   packet length     4   transport control   5   packet type
//     6   destination network (4), node (6), socket (2)
//     18  source network (4), node (6), socket (2)

constexpr int HEADER_LENGTH = 30;
constexpr int POSITIONS_SEARCHED = 29;
constexpr int LONGEST_PACKET = 4095;
constexpr int TRANSPORT_CONTROL_MAX = 64;
constexpr unsigned CUT_OFF_MAX = 29;  // octets that the packet may be longer than what was handed in

constexpr int PACKET_SPX = 5;
constexpr int SOCKET_NCP = 0x0451;

constexpr named_value PACKET_TYPES[] = {
    {0, "not specified\n"}, {1, "RIP\n"}, {4, "SAP\n"}, {PACKET_SPX, "SPX\n"}, {17, "NCP\n"}, {20, "NETBIOS\n"},
};

struct ipx_socket {
    int number = -1;
    table_text name;
    void (*dump)(octets payload) = nullptr;  // nullptr: what it carries is not decoded
};

constexpr ipx_socket SOCKETS[] = {
    {SOCKET_NCP, "NCP\n", dump_ncp},
    {0x0452, "SAP\n", dump_sap},
    {0x0453, "RIP\n", dump_ipx_rip},
    {0x0455, "NETBIOS\n", nullptr},
    {0x0457, "Novell serialization\n", nullptr},
    {0x9001, "NLSP HELLO\n", nullptr},
    {0x9004, "IPX WAN 2\n", dump_ipx_wan},
    {0x900F, "SNMP Set/Get\n", nullptr},
    {0x9010, "SNMP Trap\n", nullptr},
    {0x9086, "IPX Ping\n", nullptr},
};
constexpr ipx_socket UNKNOWN_SOCKET = {-1, "unknown 0x%x\n", nullptr};

const ipx_socket& find_socket(int number) {
    const auto* const row = std::ranges::find(SOCKETS, number, &ipx_socket::number);
    return row != std::end(SOCKETS) ? *row : UNKNOWN_SOCKET;
}

void print_socket(int number) { print_named(find_socket(number).name, static_cast<std::uint32_t>(number)); }

void dump_ipx_socket(octets payload, int number) {
    const ipx_socket& socket = find_socket(number);
    if (socket.dump != nullptr) {
        socket.dump(payload);
    } else {
        print_socket(number);
    }
}

bool is_ipx_header(octets data) {
    const int packet_length = data.be16(2);
    return data.be16(0) == 0xFFFF && packet_length > HEADER_LENGTH && packet_length <= LONGEST_PACKET &&
           static_cast<unsigned>(packet_length) - static_cast<unsigned>(data.length) <= CUT_OFF_MAX &&
           data[4] <= TRANSPORT_CONTROL_MAX;
}

void dump_destination(octets packet) {
    print<"\tdestination network: ">();
    print_ipx_network(packet.skip(6));
    print<"\n\tdestination node: ">();
    print_ipx_node(packet.skip(10));
    print<"\n\tdestination socket: ">();
    print_socket(packet.be16(16));
}

void dump_source(octets packet) {
    print<"\tsource network: ">();
    print_ipx_network(packet.skip(18));
    print<"\n\tsource node: ">();
    print_ipx_node(packet.skip(22));
    print<"\n\tsource socket: ">();
    print_socket(packet.be16(28));
}

void dump_packet(octets packet) {
    const int packet_length = packet.be16(2);
    const int packet_type = packet[5];
    print<"\tchecksum: %x\n">(packet.be16(0));
    print<"\tpacket length: %d\n">(packet_length);
    print<"\ttransport control: %d\n">(packet[4]);
    print<"\tpacket type: ">();
    print_named(value_name(PACKET_TYPES, packet_type, "unknown 0x%x\n"), static_cast<std::uint32_t>(packet_type));
    dump_destination(packet);
    dump_source(packet);

    const octets payload = packet.at(HEADER_LENGTH, packet_length - HEADER_LENGTH);
    const int destination_socket = packet.be16(16);
    const bool ncp = destination_socket == SOCKET_NCP || packet.be16(28) == SOCKET_NCP;
    print<"\t">();
    dump_ipx_socket(payload, ncp ? SOCKET_NCP : destination_socket);
    if (packet_type == PACKET_SPX) {
        dump_spx(payload);
    }
}

}  // namespace

void dump_ipx(octets data) {
    for (int position = 0; position < POSITIONS_SEARCHED; ++position) {
        const octets candidate = data.skip(position);
        if (is_ipx_header(candidate)) {
            dump_packet(candidate);
            return;
        }
    }
}

}  // namespace ifwatch
