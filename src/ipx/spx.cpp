#include "ipx/spx.h"

#include "base/print.h"

namespace ifwatch {

namespace {

// SPX header, in network order:
//
//     0   connection control    1   datastream type    2   source connection    4   destination connection
//     6   sequence number       8   acknowledge number 10  allocation number

constexpr int SYSTEM_PACKET = 0x80;  // connection control
constexpr int SEND_ACKNOWLEDGE = 0x40;

constexpr int DATASTREAM_DATA = 0x00;
constexpr int DATASTREAM_DISCONNECT = 0xFE;
constexpr int DATASTREAM_DISCONNECT_ACK = 0xFF;
constexpr int NO_CONNECTION = 0xFFFF;

const char* data_packet_name(octets header) {
    const int control = header[0];
    if (header.be16(4) == NO_CONNECTION) {
        return "Connect Request\n";
    }
    if ((control & SYSTEM_PACKET) == 0) {
        return "Data\n";
    }
    if (header.be32(6) == 0) {
        return "Connect Acknowledge\n";
    }
    return (control & SEND_ACKNOWLEDGE) != 0 ? "Watchdog Request\n" : "Watchdog Acknowledge\n";
}

const char* packet_name(octets header) {
    switch (header[1]) {
        case DATASTREAM_DATA:
            return data_packet_name(header);
        case DATASTREAM_DISCONNECT:
            return (header[0] & SEND_ACKNOWLEDGE) != 0 ? "Informed Disconnect Request\n" : "Unilateral Abort\n";
        case DATASTREAM_DISCONNECT_ACK:
            return "Informed Disconnect Acknowledge\n";
        default:
            return "unknown\n";
    }
}

}  // namespace

void dump_spx(octets header) {
    print<"\tpacket is %s">(packet_name(header));
    print<"\t\tsource connection ID: %d\n">(header.be16(2));
    print<"\t\tdest. connection ID:  %d\n">(header.be16(4));
    print<"\t\tsequence number:      %d\n">(header.be16(6));
    print<"\t\tacknowledge number:   %d\n">(header.be16(8));
    print<"\t\tallocation number:    %d\n">(header.be16(10));
}

}  // namespace ifwatch
