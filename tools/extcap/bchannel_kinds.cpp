#include "extcap/bchannel_kinds.h"

namespace ifwatch::extcap {

namespace {

using namespace capture;

constexpr bchannel_kind BCHANNEL_KINDS[] = {
    {"ppp", "PPP", {LINK_PPP}},
    {"lapb", "LAPB or X.75, with X.25 or T.70 on it", {LINK_EXPORTED_PDU, "lapb"}},
    {"frame-relay", "Frame Relay", {LINK_FRAME_RELAY}},
    {"cisco-hdlc", "Cisco HDLC", {LINK_CISCO_HDLC}},
    {"ip", "IP without a link layer", {LINK_RAW_IP}},
    {"raw", "Raw frames (link type USER0)", {LINK_USER0}},
};

}  // namespace

std::span<const bchannel_kind> bchannel_kinds() { return BCHANNEL_KINDS; }

}  // namespace ifwatch::extcap
