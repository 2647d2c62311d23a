#include "lan/llc.h"

#include "base/print.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "lan/ethertype.h"

namespace ifwatch {

namespace {

constexpr int SNAP_SAP = 0xAA;
constexpr int SNAP_HEADER_LENGTH = 8;
constexpr int UNNUMBERED = 3;  // the low two bits of the control octet

int dump_snap(octets frame, const display_context& context, int& type) {
    type = frame.be16(6);
    if ((context.mode_flags & MODE_LAYER2) != 0) {
        print<"      SNAP Organisation=0x%06x Type=0x%04x\n">(frame.be24(3), type);
    }
    return SNAP_HEADER_LENGTH;
}

}  // namespace

int dump_llc(octets frame, display_context& context, int& type) {
    if (frame[0] == SNAP_SAP) {
        return dump_snap(frame, context, type);
    }
    type = frame[0];
    const bool unnumbered = (frame[2] & UNNUMBERED) == UNNUMBERED;
    return unnumbered ? 3 : 4;
}

void dump_llc_frame(octets frame, display_context& context) {
    int type = KEY_NONE;
    const int header_length = dump_llc(frame, context, type);
    dump_ethertype(frame.skip(header_length), context, type);
}

}  // namespace ifwatch
