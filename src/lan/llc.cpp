#include "lan/llc.h"

#include "base/print.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "lan/ethertype.h"
#include "x25/lapb.h"
#include "x25/t70.h"

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

void dump_header(octets frame, display_context& context, bool unnumbered) {
    const int control = frame[2];
    const int poll_final = unnumbered ? control >> 4 & 1 : frame[3] & 1;
    const lapb_header header{
        .address = frame[0], .control = control, .nr = frame[3] >> 1, .ns = control >> 1, .poll_final = poll_final};
    print_lapb_control(frame.skip(1), header, context);
}

}  // namespace

int dump_llc(octets frame, display_context& context, int& type) {
    if (frame[0] == SNAP_SAP) {
        return dump_snap(frame, context, type);
    }
    type = frame[0];
    const bool unnumbered = (frame[2] & UNNUMBERED) == UNNUMBERED;
    const int header_length = unnumbered ? 3 : 4;
    if ((context.mode_flags & MODE_LAYER2) != 0) {
        dump_header(frame, context, unnumbered);
    }
    if ((context.mode_flags & MODE_LAYER3) != 0 && frame.length > header_length) {
        dump_t70_packet(frame.skip(header_length));
    }
    return header_length;
}

void dump_llc_frame(octets frame, display_context& context) {
    int type = KEY_NONE;
    const int header_length = dump_llc(frame, context, type);
    dump_ethertype(frame.skip(header_length), context, type);
}

}  // namespace ifwatch
