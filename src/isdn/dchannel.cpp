#include "isdn/dchannel.h"

#include "base/print.h"
#include "display/mode_flags.h"
#include "isdn/call_reference.h"
#include "isdn/lapd.h"
#include "isdn/q931_message.h"
#include "ppp/ppp.h"
#include "x25/x25_packet.h"

namespace ifwatch {

namespace {

constexpr int GROUP_TEI = 127;
constexpr int SAPI_X25 = 16;
constexpr int X25_HEADER = 3;

bool passes_tei_filter(octets frame, std::uint32_t mode_flags, std::int32_t tei_filter) {
    const int tei = lapd_tei(frame);
    return (mode_flags & MODE_TEI_FILTER) == 0 || tei_filter == -1 || tei == tei_filter || tei == GROUP_TEI;
}

bool passes_cref_filter(octets frame, std::uint32_t mode_flags, std::int32_t cref_filter) {
    if ((mode_flags & MODE_CREF_FILTER) == 0 || cref_filter == -1) {
        return true;
    }
    const std::int32_t callref = message_callref(frame);
    return callref == cref_filter || callref == -1;
}

/// X.25 in an I frame (ITU-T X.31). PPP is offered what follows the packet header, with the length of all of it.
void dump_x25_in_dchannel(octets frame, std::uint32_t mode_flags) {
    const int header_length = lapd_header_length(frame);
    const octets packet = frame.skip(header_length);
    dump_x25_packet(packet);
    if ((mode_flags & MODE_PPP) != 0 && header_length + X25_HEADER < packet.length) {
        dump_ppp(packet.at(X25_HEADER, packet.length));
    }
}

}  // namespace

std::int32_t message_callref(octets frame) {
    if (!lapd_carries_layer3(frame)) {
        return -1;
    }
    const octets message = frame.skip(lapd_header_length(frame));
    const bool is_dummy = message[1] == 0;
    return has_call_reference(message[0]) && !is_dummy ? call_reference(message) : -1;
}

void dump_dchannel(octets frame, std::uint32_t mode_flags, std::int32_t tei_filter, std::int32_t cref_filter,
                   std::uint32_t /*record_flags*/) {
    const int header_length = lapd_header_length(frame);
    if (header_length > frame.length) {
        print<"\n!!! Error : Unable to interpret D-CHANNEL-MESSAGE">();
        print<" Layer2-Info is longer than allowed (0x%x > 0x%x)\n">(header_length, frame.length);
        return;
    }
    if ((mode_flags & MODE_LAYER2_ASKED) != 0 && passes_tei_filter(frame, mode_flags, tei_filter)) {
        dump_lapd(frame);
    }
    if ((mode_flags & MODE_LAYER3_ASKED) == 0) {
        return;
    }
    if (lapd_sapi(frame) == SAPI_X25 && lapd_is_i_frame(frame)) {
        dump_x25_in_dchannel(frame, mode_flags);
        return;
    }
    if (!lapd_carries_layer3(frame) || !passes_cref_filter(frame, mode_flags, cref_filter)) {
        return;
    }
    dump_layer3(0, frame.skip(header_length));
}

}  // namespace ifwatch
