#include "isdn/lapd.h"

#include "base/names.h"
#include "base/print.h"

namespace ifwatch {

namespace {

constexpr named_value SUPERVISORY_FRAMES[] = {
    {RR, "RR   "},
    {RNR, "RNR  "},
    {REJ, "REJ  "},
};

// By the control octet without its P/F bit.
constexpr named_value UNNUMBERED_FRAMES[] = {
    {UI, "UI   "}, {DM, "DM   "}, {DISC, "DISC "}, {UA, "UA   "}, {SABME, "SABME"}, {FRMR, "FRMR "}, {XID, "XID  "},
};

void dump_control(octets frame) {
    const int control = frame[2];
    const int nr = frame[3] >> 1;
    const int poll_final = frame[3] & 1;
    if (lapd_is_i_frame(frame)) {
        print<"I     P/F=%d N(R)=%02X N(S)=%02X">(poll_final, nr, control >> 1);
    } else if (const table_text supervisory = value_name(SUPERVISORY_FRAMES, control)) {
        print<"%s P/F=%d">(supervisory, poll_final);
        print<" N(R)=%02X">(nr);
    } else if (const table_text unnumbered = value_name(UNNUMBERED_FRAMES, control & ~POLL_FINAL)) {
        print<"%s P/F=%d">(unnumbered, (control & POLL_FINAL) != 0 ? 1 : 0);
    } else {
        print<"\n!!!\tIllegal D-Channel Message (Layer 2 - Controlword : 0x%x)\n">(control);
    }
}

}  // namespace

void dump_lapd(octets frame) {
    print<"\tSAPI=%02X\tC/R=%1X\tTEI=%02X\t">(lapd_sapi(frame), frame[0] >> 1 & 1, lapd_tei(frame));
    dump_control(frame);
    print<"\n">();
}

}  // namespace ifwatch
