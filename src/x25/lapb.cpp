#include "x25/lapb.h"

#include <cstdint>

#include "base/names.h"
#include "base/print.h"
#include "display/display_context.h"
#include "x25/control_octets.h"
#include "x25/frmr.h"
#include "x25/xid.h"

namespace ifwatch {

namespace {

constexpr int HEADER_LENGTH = 2;

// By the control octet without its P/F bit.
constexpr named_value UNNUMBERED_FRAMES[] = {
    {DM, "DM   "}, {SABM, "SABM "}, {DISC, "DISC "}, {UA, "UA   "}, {SABME, "SABME"}, {FRMR, "FRMR "}, {XID, "XID  "},
};

// By the low four bits of the control octet.
constexpr named_value SUPERVISORY_FRAMES[] = {
    {RR, "RR   "},
    {RNR, "RNR  "},
    {REJ, "REJ  "},
};

/// The address with the sign of its octets kept; its low 11 bits are printed.
int lapb_address(octets frame) {
    const int first = static_cast<std::int8_t>(frame[0]);
    if ((first & 1) != 0) {
        return first;
    }
    const int second = static_cast<std::int8_t>(frame[1]);
    return ((first >> 2) * 128) | (second >> 1);
}

void follow_modulus(int frame_type, display_context& context) {
    if (frame_type == SABME) {
        context.lapb_mod128 = 1;
    } else if (frame_type == SABM || frame_type == DISC) {
        context.lapb_mod128 = 0;
    }
}

/// Prints the information field of the U frames that have one of their own; returns its octets.
int dump_information_field(octets frame, int frame_type) {
    switch (frame_type) {
        case FRMR:
            return dump_frmr_info(frame, HEADER_LENGTH);
        case XID:
            return dump_xid_info(frame.skip(HEADER_LENGTH));
        default:
            return 0;
    }
}

/// Prints what follows the address and returns the octets of the header.
int print_control(octets frame, const lapb_header& header, display_context& context) {
    const int numbered_length = context.lapb_mod128 != 0 ? HEADER_LENGTH + 1 : HEADER_LENGTH;
    const int control = header.control;
    if ((control & 1) == 0) {
        print<"I    P/F=%1X N(R)=%d N(S)=%d ">(header.poll_final, header.nr, header.ns);
        return numbered_length;
    }
    if (control == UI) {
        print<"UI">();
        return HEADER_LENGTH;
    }
    const int frame_type = control & ~POLL_FINAL;
    if (const table_text name = value_name(UNNUMBERED_FRAMES, frame_type)) {
        print<"%s P/F=%d">(name, header.poll_final);
        follow_modulus(frame_type, context);
        return HEADER_LENGTH + dump_information_field(frame, frame_type);
    }
    if (const table_text name = value_name(SUPERVISORY_FRAMES, control & 0x0F)) {
        print<"%s P/F=%d N(R)=%d">(name, header.poll_final, header.nr);
        return numbered_length;
    }
    print<"\n!!!\tIllegal B-Channel Message (Layer 2 - Controlword : %02X)\n">(control);
    return HEADER_LENGTH;
}

}  // namespace

lapb_header read_lapb_header(octets frame, bool modulo128) {
    const int control_at = (frame[0] & 1) != 0 ? 1 : 2;
    const int control = frame[control_at];
    lapb_header header{.address = lapb_address(frame), .control = control};
    if (modulo128) {
        const int next = frame[control_at + 1];
        header.ns = control >> 1;
        header.nr = next >> 1;
        header.poll_final = next & 1;
    } else {
        header.ns = control >> 1 & 7;
        header.nr = control >> 5;
        header.poll_final = control >> 4 & 1;
    }
    return header;
}

int dump_lapb_frame(octets frame, display_context& context) {
    return print_lapb_control(frame, read_lapb_header(frame, context.lapb_mod128 != 0), context);
}

int print_lapb_control(octets frame, const lapb_header& header, display_context& context) {
    print<"\tA=%4X  ">(header.address & 0x7FF);
    const int length = print_control(frame, header, context);
    print<"\n">();
    return length;
}

}  // namespace ifwatch
