#include "sim/link_types.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <sstream>
#include <string_view>

#include "sim/channel_types.h"
#include "trace/element.h"

namespace ifwatch::sim {

namespace {

constexpr std::uint16_t LAPD_SENT = 4;        // packet type of an outgoing packet
constexpr std::uint16_t ARPHRD_LAPD = 8445;   // hardware type
constexpr std::uint16_t ETH_P_LAPD = 0x0030;  // protocol type
constexpr std::uint8_t SUNATM_SENT = 0x80;
constexpr std::uint8_t SUNATM_LLC = 2;  // kinds of traffic: LLC, and anything
constexpr std::uint8_t SUNATM_OTHER = 0;
constexpr std::uint8_t LLC_SNAP = 0xAA;
constexpr std::uint8_t LLC_ISO = 0xFE;
constexpr std::uint32_t CONNECTION_BITS = 0xFFFFFF00;  // of the info word: VPI and VCI

// Of what a B-channel may carry.
constexpr std::uint32_t PPP_WITH_DIRECTION = 204;
constexpr std::uint32_t LAPB_WITH_DIRECTION = 207;
constexpr std::uint32_t FRAME_RELAY = 107;

constexpr const char* LAN_OPTIONS = "-2 -p -i -N";
constexpr const char* PPP_OPTIONS = "-p -i";

// Where a channel type has several, the first is that which is written. Frame Relay and Cisco HDLC are shown as
// B-channels are, since the router's own interfaces of that kind have no decoder: IP is found behind either header.
constexpr link_kind LINK_KINDS[] = {
    {1, "Ethernet", link_header::NONE, CHANNEL_LAN, LAN_OPTIONS},
    {6, "Token Ring", link_header::NONE, CHANNEL_TOKEN_RING, LAN_OPTIONS},
    {177, "LAPD with direction", link_header::LINUX_LAPD, CHANNEL_D, "-2 -3"},
    {203, "LAPD", link_header::NONE, CHANNEL_D, "-2 -3"},
    {204, "PPP with direction", link_header::DIRECTION, CHANNEL_B, PPP_OPTIONS},
    {9, "PPP", link_header::NONE, CHANNEL_B, PPP_OPTIONS},
    {50, "PPP in HDLC framing", link_header::NONE, CHANNEL_B, PPP_OPTIONS},
    {207, "LAPB with direction", link_header::DIRECTION, CHANNEL_B, "-2 -3 -t"},
    {206, "Frame Relay with direction", link_header::DIRECTION, CHANNEL_B, "-i -h"},
    {107, "Frame Relay", link_header::NONE, CHANNEL_B, "-i -h"},
    {205, "Cisco HDLC with direction", link_header::DIRECTION, CHANNEL_B, "-i -h"},
    {104, "Cisco HDLC", link_header::NONE, CHANNEL_B, "-i -h"},
    {123, "ATM with VPI and VCI", link_header::SUNATM, CHANNEL_ATM, LAN_OPTIONS},
    {100, "ATM, RFC 1483", link_header::NONE, CHANNEL_ATM, LAN_OPTIONS},
    {11, "ATM, RFC 1483", link_header::NONE, CHANNEL_ATM, LAN_OPTIONS},  // as some systems number it
    {101, "IP", link_header::NONE, CHANNEL_TUNNEL, "-i"},
    {228, "IPv4", link_header::NONE, CHANNEL_TUNNEL, "-i"},
    {12, "IP", link_header::NONE, CHANNEL_TUNNEL, "-i"},  // as some systems number it
    {14, "IP", link_header::NONE, CHANNEL_TUNNEL, "-i"},
};

struct channel_link {
    int channel_type;
    std::uint32_t link_type;
};

// Of the channel types that no row above names.
constexpr channel_link OTHER_CHANNELS[] = {
    {CHANNEL_ATM_OLD, 123}, {CHANNEL_LAN_802_3, 1},     {CHANNEL_BRIDGED_LAN, 1},
    {CHANNEL_TOKEN_BUS, 6}, {CHANNEL_IP_OVER_X25, 101}, {CHANNEL_LAPB, 207},
    {CHANNEL_PPP, 204},     {CHANNEL_FRAME_RELAY, 107}, {CHANNEL_HDLC, 104},
};

void append_be16(std::vector<std::uint8_t>& packet, std::uint16_t value) {
    packet.push_back(static_cast<std::uint8_t>(value >> 8));
    packet.push_back(static_cast<std::uint8_t>(value));
}

/// The letters of the short options in a text, each argument that an option takes left out.
std::string letters_of(const std::string& options) {
    constexpr std::string_view with_argument = "nTcrHPVIB";
    std::string letters;
    std::istringstream words(options);
    for (std::string word; words >> word;) {
        if (word.size() < 2 || word[0] != '-' || word[1] == '-') {
            continue;
        }
        letters += word.substr(1, word.find_first_of(with_argument) - 1);
    }
    return letters;
}

std::optional<std::uint32_t> bchannel_link_type(const std::string& letters) {
    const auto asks = [&](const char* wanted) { return letters.find_first_of(wanted) != std::string::npos; };
    if (letters.empty() || asks("p")) {
        return PPP_WITH_DIRECTION;
    }
    if (asks("23")) {
        return LAPB_WITH_DIRECTION;
    }
    return asks("f") ? std::optional(FRAME_RELAY) : std::nullopt;
}

bool is_llc(std::span<const std::uint8_t> frame) {
    return frame.size() >= 2 && frame[0] == frame[1] && (frame[0] == LLC_SNAP || frame[0] == LLC_ISO);
}

void append_lapd_header(bool sent, std::vector<std::uint8_t>& packet) {
    constexpr std::array<std::uint8_t, 8> no_address{};
    append_be16(packet, sent ? LAPD_SENT : 0);
    append_be16(packet, ARPHRD_LAPD);
    append_be16(packet, 0);
    packet.insert(packet.end(), no_address.begin(), no_address.end());
    append_be16(packet, ETH_P_LAPD);
}

void append_sunatm_header(const case_record& record, bool sent, std::vector<std::uint8_t>& packet) {
    const std::uint8_t traffic = is_llc(record.data) ? SUNATM_LLC : SUNATM_OTHER;
    packet.push_back(static_cast<std::uint8_t>((sent ? SUNATM_SENT : 0) | traffic));
    packet.push_back(static_cast<std::uint8_t>(record.info >> 24));
    append_be16(packet, static_cast<std::uint16_t>(record.info >> 8));
}

}  // namespace

const link_kind* find_link_kind(std::uint32_t link_type) {
    const auto* const found = std::ranges::find(LINK_KINDS, link_type, &link_kind::link_type);
    return found != std::end(LINK_KINDS) ? found : nullptr;
}

std::optional<std::uint32_t> link_type_of(int channel_type) {
    const auto* const named = std::ranges::find(LINK_KINDS, channel_type, &link_kind::channel_type);
    if (named != std::end(LINK_KINDS)) {
        return named->link_type;
    }
    const auto* const other = std::ranges::find(OTHER_CHANNELS, channel_type, &channel_link::channel_type);
    return other != std::end(OTHER_CHANNELS) ? std::optional(other->link_type) : std::nullopt;
}

std::optional<std::uint32_t> link_type_of(const trace_case& exported) {
    if (exported.channel_type != CHANNEL_B) {
        return link_type_of(exported.channel_type);
    }
    return bchannel_link_type(exported.options.empty() ? "" : letters_of(exported.options.front()));
}

const char* viewer_options_of(int channel_type) {
    if (channel_type == CHANNEL_PABX) {
        return "-3";
    }
    const auto link_type = link_type_of(channel_type);
    const link_kind* const kind = link_type ? find_link_kind(*link_type) : nullptr;
    const bool decoded = kind != nullptr && (kind->channel_type == channel_type || channel_type == CHANNEL_ATM_OLD ||
                                             channel_type == CHANNEL_LAN_802_3 || channel_type == CHANNEL_BRIDGED_LAN);
    return decoded ? kind->viewer_options : "-h";
}

std::size_t link_header_length(link_header header) {
    switch (header) {
        case link_header::DIRECTION:
            return 1;
        case link_header::LINUX_LAPD:
            return 16;
        case link_header::SUNATM:
            return 4;
        case link_header::NONE:
            break;
    }
    return 0;
}

link_facts read_link_header(link_header header, std::span<const std::uint8_t> packet) {
    switch (header) {
        case link_header::DIRECTION:
            return {.sent = packet[0] != 0};
        case link_header::LINUX_LAPD:
            return {.sent = load_be16(packet.data()) == LAPD_SENT};
        case link_header::SUNATM:
            return {.sent = (packet[0] & SUNATM_SENT) != 0, .info = load_be32(packet.data()) << 8 & CONNECTION_BITS};
        case link_header::NONE:
            break;
    }
    return {};
}

void append_link_header(link_header header, const case_record& record, std::vector<std::uint8_t>& packet) {
    const bool sent = (record.flags & 1) != 0;
    switch (header) {
        case link_header::DIRECTION:
            packet.push_back(sent ? 1 : 0);
            break;
        case link_header::LINUX_LAPD:
            append_lapd_header(sent, packet);
            break;
        case link_header::SUNATM:
            append_sunatm_header(record, sent, packet);
            break;
        case link_header::NONE:
            break;
    }
}

}  // namespace ifwatch::sim
