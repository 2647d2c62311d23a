#include "capture/link_types.h"

#include <algorithm>
#include <iterator>

#include "capture/channel_types.h"

namespace ifwatch::capture {

namespace {

constexpr const char* LAN_OPTIONS = "-2 -p -i -N";
constexpr const char* PPP_OPTIONS = "-p -i";
constexpr const char* HEX_OPTIONS = "-h";

// Frame Relay and Cisco HDLC are shown as B-channels are, since the router's own interfaces of that kind have no
// decoder: IP is found behind either header. Frames of several kinds of lines, which Linux captures together, are shown
// as Ethernet, whose header has all that theirs tells.
constexpr link_kind LINK_KINDS[] = {
    {1, link_header::NONE, "Ethernet", CHANNEL_LAN, LAN_OPTIONS},
    {6, link_header::NONE, "Token Ring", CHANNEL_TOKEN_RING, LAN_OPTIONS},
    {177, link_header::LINUX_LAPD, "LAPD with direction", CHANNEL_D, "-2 -3"},
    {203, link_header::NONE, "LAPD", CHANNEL_D, "-2 -3"},
    {204, link_header::DIRECTION, "PPP with direction", CHANNEL_B, PPP_OPTIONS},
    {9, link_header::NONE, "PPP", CHANNEL_B, PPP_OPTIONS},
    {50, link_header::NONE, "PPP in HDLC framing", CHANNEL_B, PPP_OPTIONS},
    {207, link_header::DIRECTION, "LAPB with direction", CHANNEL_B, "-2 -3 -t"},
    {206, link_header::DIRECTION, "Frame Relay with direction", CHANNEL_B, "-i -h"},
    {107, link_header::NONE, "Frame Relay", CHANNEL_B, "-i -h"},
    {205, link_header::DIRECTION, "Cisco HDLC with direction", CHANNEL_B, "-i -h"},
    {104, link_header::NONE, "Cisco HDLC", CHANNEL_B, "-i -h"},
    {123, link_header::SUNATM, "ATM with VPI and VCI", CHANNEL_ATM, LAN_OPTIONS},
    {100, link_header::NONE, "ATM, RFC 1483", CHANNEL_ATM, LAN_OPTIONS},
    {11, link_header::NONE, "ATM, RFC 1483", CHANNEL_ATM, LAN_OPTIONS},  // as some systems number it
    {101, link_header::NONE, "IP", CHANNEL_TUNNEL, "-i"},
    {228, link_header::NONE, "IPv4", CHANNEL_TUNNEL, "-i"},
    {12, link_header::NONE, "IP", CHANNEL_TUNNEL, "-i"},  // as some systems number it
    {14, link_header::NONE, "IP", CHANNEL_TUNNEL, "-i"},
    {113, link_header::LINUX_COOKED, "Linux cooked", CHANNEL_LAN, LAN_OPTIONS},
    {276, link_header::LINUX_COOKED_2, "Linux cooked, version 2", CHANNEL_LAN, LAN_OPTIONS},
    {252, link_header::EXPORTED_PDU, "exported PDUs", std::nullopt, HEX_OPTIONS},
};

/// What the frames of an interface are written as: to classic PCAP and to pcapng.
struct channel_link {
    int channel_type;
    std::optional<known_link_type> pcap;
    link_layer pcapng;
    const char* viewer_options;
};

// The rest are management objects (4), and interfaces whose framing the router does not tell (94, 169).
constexpr channel_link CHANNEL_LINKS[] = {
    {CHANNEL_PABX, std::nullopt, {LINK_EXPORTED_PDU, "q931", 6}, "-3"},  // behind the port and the number of the call
    {CHANNEL_D, LINK_LAPD_WITH_DIRECTION, {LINK_LAPD}, "-2 -3"},
    {CHANNEL_B, LINK_PPP_WITH_DIRECTION, {LINK_PPP}, PPP_OPTIONS},
    {CHANNEL_ATM_OLD, LINK_SUNATM, {LINK_SUNATM}, LAN_OPTIONS},
    {CHANNEL_ATM, LINK_SUNATM, {LINK_SUNATM}, LAN_OPTIONS},
    {CHANNEL_IP_OVER_X25, LINK_RAW_IP, {LINK_RAW_IP}, HEX_OPTIONS},
    {CHANNEL_LAN, LINK_ETHERNET, {LINK_ETHERNET}, LAN_OPTIONS},
    {CHANNEL_LAN_802_3, LINK_ETHERNET, {LINK_ETHERNET}, LAN_OPTIONS},
    {CHANNEL_TOKEN_BUS, LINK_TOKEN_RING, {LINK_TOKEN_RING}, HEX_OPTIONS},
    {CHANNEL_TOKEN_RING, LINK_TOKEN_RING, {LINK_TOKEN_RING}, LAN_OPTIONS},
    {CHANNEL_LAPB, LINK_LAPB_WITH_DIRECTION, {LINK_EXPORTED_PDU, "lapb"}, HEX_OPTIONS},
    {CHANNEL_PPP, LINK_PPP_WITH_DIRECTION, {LINK_PPP}, HEX_OPTIONS},
    {CHANNEL_FRAME_RELAY, LINK_FRAME_RELAY, {LINK_FRAME_RELAY}, HEX_OPTIONS},
    {CHANNEL_HDLC, LINK_CISCO_HDLC, {LINK_CISCO_HDLC}, HEX_OPTIONS},
    {CHANNEL_TUNNEL, LINK_RAW_IP, {LINK_RAW_IP, nullptr, 2}, "-i"},  // behind two octets of its own
    {CHANNEL_BRIDGED_LAN, LINK_ETHERNET, {LINK_ETHERNET}, LAN_OPTIONS},
};

const channel_link* find_channel_link(int channel_type) {
    const auto* const found = std::ranges::find(CHANNEL_LINKS, channel_type, &channel_link::channel_type);
    return found != std::end(CHANNEL_LINKS) ? found : nullptr;
}

}  // namespace

const link_kind* find_link_kind(std::uint32_t link_type) {
    const auto* const found = std::ranges::find(LINK_KINDS, link_type, &link_kind::link_type);
    return found != std::end(LINK_KINDS) ? found : nullptr;
}

link_layer find_link_layer(int channel_type, const link_layer& bchannel) {
    if (channel_type == CHANNEL_B) {
        return bchannel;
    }
    const channel_link* const found = find_channel_link(channel_type);
    return found != nullptr ? found->pcapng : link_layer{};
}

std::optional<std::uint32_t> link_type_of(int channel_type) {
    const channel_link* const found = find_channel_link(channel_type);
    return found != nullptr && found->pcap ? std::optional<std::uint32_t>(*found->pcap) : std::nullopt;
}

const char* viewer_options_of(int channel_type) {
    const channel_link* const found = find_channel_link(channel_type);
    return found != nullptr ? found->viewer_options : HEX_OPTIONS;
}

}  // namespace ifwatch::capture
