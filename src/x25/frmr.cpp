#include "x25/frmr.h"

#include <cstdint>

#include "base/names.h"
#include "base/print.h"
#include "x25/control_octets.h"

namespace ifwatch {

namespace {

// S frames by their function bits, U frames with the P/F bit set.
constexpr named_value REJECTED_FRAMES[] = {
    {SABME | POLL_FINAL, "SABME "},
    {DISC | POLL_FINAL, "DISC  "},
    {UA | POLL_FINAL, "UA    "},
    {DM | POLL_FINAL, "DM    "},
    {FRMR | POLL_FINAL, "FRMR  "},
    {0x00, "RR    "},
    {0x04, "RNR   "},
    {0x08, "REJ   "},
};

constexpr table_text UNKNOWN_FRAME = "0x%.2x  ";

constexpr table_text REASONS[] = {
    "W=1 (Control field illegal or not implemented)", "X=1 (Information field not permitted)",
    "Y=1 (Information field exceedes limit",          "Z=1 (Control field has invalid N(R))",
    "V=1 (Control field has invalid N(S))",
};

int signed_octet(octets frame, int offset) { return static_cast<std::int8_t>(frame[offset]); }

/// Prints the rejected control field and returns the octets it took. An octet of no frame type takes none; the second
/// octet of an I or S frame is shown but not taken.
int dump_rejected_control(octets frame, int offset) {
    const int control = frame[offset];
    const int rejected = signed_octet(frame, offset);
    const int next = signed_octet(frame, offset + 1);
    switch (control & 3) {
        case 1:
            print<"    through ">();
            print_named(value_name(REJECTED_FRAMES, control & 0x0C, UNKNOWN_FRAME),
                        static_cast<std::uint32_t>(rejected));
            print<"P/F=%d N(R)=%d">(next & 1, next >> 1);
            return 1;
        case 3:
            print<"    through ">();
            print_named(value_name(REJECTED_FRAMES, control | POLL_FINAL, UNKNOWN_FRAME),
                        static_cast<std::uint32_t>(control));
            return 1;
        case 0:
            print<"    through DATA P/F=%d N(S)=%d N(R)=%d">(next & 1, rejected >> 1, next >> 1);
            return 1;
        default:
            return 0;
    }
}

}  // namespace

constexpr std::span<const table_text> FRMR_REASONS = REASONS;

int dump_frmr_info(octets frame, int offset) {
    if (frame.length > 1) {
        offset += dump_rejected_control(frame, offset);
        print<"\n">();
    }
    if (offset < frame.length) {
        const int states = frame[offset];
        print<"              C/R=%d V(R)=%d V(S)=%d\n">(states >> 4 & 1, states >> 5, states >> 1 & 7);
    } else {
        print<"\n">();
    }
    ++offset;
    if (offset >= frame.length) {
        return frame.length;
    }
    int bit = 0;
    for (const table_text reason : FRMR_REASONS) {
        if ((frame[offset] >> bit++ & 1) != 0) {
            print<"              %s\n">(reason);
        }
    }
    return frame.length;
}

}  // namespace ifwatch
