#include "x25/t70.h"

#include "base/print.h"
#include "x25/x25_packet.h"

namespace ifwatch {

int dump_t70_packet(octets packet) {
    switch (packet[0] >> 4 & 3) {
        case 0:
            print<"\t    CSDN DATA M=%d, Q=%d\n">(packet[1] >> 7, packet[1] >> 6 & 1);
            return (packet[0] & 0x0F) + 1;
        case 3:
            print<"\t    RESERVED\n">();
            return packet.length;
        default:
            return dump_x25_packet(packet);
    }
}

}  // namespace ifwatch
