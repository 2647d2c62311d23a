#include "fax/t30_frame.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "base/names.h"
#include "base/print.h"
#include "fax/ppr.h"
#include "fax/t30_bitfields.h"

namespace ifwatch {

namespace {

// The letter behind a name is bit 0 of the FCF: S from the station that received a valid DIS, R from the other. Only
// the post-message commands of 0x3x, 0x5x and 0x9x exist with a procedure interrupt (PRI-).
constexpr named_value FCF_NAMES[] = {
    {0x1C, "ERR(%c)"}, {0x1D, "ERR(%c)"},                                        // response to EOR
    {0xFA, "DCN(%c)"}, {0xFB, "DCN(%c)"}, {0x1A, "CRP(%c)"}, {0x1B, "CRP(%c)"},  // disconnect, repeat
    {0x86, "RCP"},                                                               // return to control, partial page
    {0x20, "NSF"},     {0x21, "NSC"},     {0x22, "NSS(%c)"}, {0x23, "NSS(%c)"},  // non-standard facilities
    {0x84, "CFR(%c)"}, {0x85, "CFR(%c)"}, {0x44, "FTT(%c)"}, {0x45, "FTT(%c)"},  // training
    {0x8E, "EOM(%c)"}, {0x8F, "EOM(%c)"}, {0x9E, "EOM(%c)"}, {0x9F, "EOM(%c)"},  // post-message commands
    {0x4E, "MPS(%c)"}, {0x4F, "MPS(%c)"}, {0x5E, "MPS(%c)"}, {0x5F, "MPS(%c)"},
    {0x2E, "EOP(%c)"}, {0x2F, "EOP(%c)"}, {0x3E, "EOP(%c)"}, {0x3F, "EOP(%c)"},
    {0x8C, "MCF(%c)"}, {0x8D, "MCF(%c)"}, {0xCC, "RTP(%c)"}, {0xCD, "RTP(%c)"},  // post-message responses
    {0x4C, "RTN(%c)"}, {0x4D, "RTN(%c)"}, {0xAC, "PIP(%c)"}, {0xAD, "PIP(%c)"},
    {0x2C, "PIN(%c)"}, {0x2D, "PIN(%c)"}, {0xC4, "CTR(%c)"}, {0xC5, "CTR(%c)"},
    {0x6E, "RR(%c)"},  {0x6F, "RR(%c)"},  {0xEC, "RNR(%c)"}, {0xED, "RNR(%c)"},  // flow control
};

// Second FCF of PPS and EOR.
constexpr named_value POST_MESSAGES[] = {
    {0x00, "NULL"},    {0x8F, "EOM"},     {0x4F, "MPS"},     {0x2F, "EOP"},
    {0x9F, "PRI-EOM"}, {0x5F, "PRI-MPS"}, {0x3F, "PRI-EOP"},
};

char direction_letter(octets frame) { return (frame[0] & 1) != 0 ? 'S' : 'R'; }

octets information_field(octets frame) { return frame.skip(1); }

table_text post_message_name(octets frame) { return value_name(POST_MESSAGES, frame[1], ""); }

void dump_dis(octets frame) {
    print<"DIS\n">();
    dump_t30_bitfields(information_field(frame), false);
}

void dump_dtc(octets frame) {
    print<"DTC\n">();
    dump_t30_bitfields(information_field(frame), false);
}

void dump_dcs(octets frame) {
    print<"DCS(%c)\n">(direction_letter(frame));
    dump_t30_bitfields(information_field(frame), true);
}

void dump_ctc(octets frame) {
    print<"CTC(%c)\n">(direction_letter(frame));
    dump_t30_bitfields(information_field(frame), true);
}

/// Prints the rest of an identification's line: the FIF, turned round, in quotes.
void print_identification(octets frame) {
    const octets digits = information_field(frame);
    reverse_octets(digits);
    print<"\"%*.*s\"\n">(digits.within(), digits.within(), digits.text(0, digits.within()));
}

void dump_csi(octets frame) {
    print<"CSI ">();
    print_identification(frame);
}

void dump_cig(octets frame) {
    print<"CIG ">();
    print_identification(frame);
}

void dump_tsi(octets frame) {
    print<"TSI(%c) ">(direction_letter(frame));
    print_identification(frame);
}

void dump_fcd(octets frame) { print<"FCD N=%d PIXEL DATA len=%d\n">(frame[1], frame.length - 2); }

void dump_ppr(octets frame) {
    print<"PPR(%c)  ">(direction_letter(frame));
    print_ppr_bitmap(information_field(frame));
}

void dump_pps(octets frame) {
    print<"PPS-%s(%c) PC=%d BC=%d FC=%d\n">(post_message_name(frame), direction_letter(frame), frame[2], frame[3],
                                            frame[4]);
}

void dump_eor(octets frame) { print<"EOR-%s(%c)\n">(post_message_name(frame), direction_letter(frame)); }

struct frame_printer {
    int fcf;
    void (*show)(octets frame);
};

constexpr frame_printer FRAMES_WITH_FIELDS[] = {
    {0x80, dump_dis}, {0x81, dump_dtc}, {0x82, dump_dcs}, {0x83, dump_dcs}, {0x12, dump_ctc}, {0x13, dump_ctc},
    {0x40, dump_csi}, {0x41, dump_cig}, {0x42, dump_tsi}, {0x43, dump_tsi}, {0x06, dump_fcd}, {0xBC, dump_ppr},
    {0xBD, dump_ppr}, {0xBE, dump_pps}, {0xBF, dump_pps}, {0xCE, dump_eor}, {0xCF, dump_eor},
};

bool interrupts_procedure(int fcf) {
    const int group = fcf & 0xF0;
    return group == 0x30 || group == 0x50 || group == 0x90;
}

void dump_plain_frame(octets frame) {
    const table_text name = value_name(FCF_NAMES, frame[0]);
    if (!name) {
        print<"%02x\n">(frame[0]);
        return;
    }
    print<"%s">(interrupts_procedure(frame[0]) ? "PRI-" : "");
    print_named(name, static_cast<std::uint32_t>(direction_letter(frame)));
    print<"\n">();
}

}  // namespace

void dump_t30_frame(octets frame) {
    const frame_printer* const found = std::ranges::find(FRAMES_WITH_FIELDS, frame[0], &frame_printer::fcf);
    if (found != std::end(FRAMES_WITH_FIELDS)) {
        found->show(frame);
    } else {
        dump_plain_frame(frame);
    }
}

std::string_view t30_frame_name(int fcf) {
    const std::string_view name = value_name(FCF_NAMES, fcf, "").view();
    return name.substr(0, name.find('('));
}

void reverse_octets(octets field) { std::reverse(field.data, field.data + field.within()); }

}  // namespace ifwatch
