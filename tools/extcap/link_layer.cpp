#include "extcap/link_layer.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include "base/format.h"
#include "display/channel_display.h"
#include "display/display_context.h"
#include "extcap/pcapng.h"
#include "lan/wlan_oid.h"
#include "trace/element.h"

namespace ifwatch::extcap {

namespace {

constexpr int TYPE_PABX = -2;
constexpr int TYPE_BCHANNEL = 1;
constexpr int TYPE_ATM_OLD = 2;
constexpr int TYPE_WLAN = 4;

constexpr bchannel_kind BCHANNEL_KINDS[] = {
    {"ppp", "PPP", {LINK_PPP}},
    {"lapb", "LAPB or X.75, with X.25 or T.70 on it", {LINK_EXPORTED_PDU, "lapb"}},
    {"frame-relay", "Frame Relay", {LINK_FRAME_RELAY}},
    {"cisco-hdlc", "Cisco HDLC", {LINK_CISCO_HDLC}},
    {"ip", "IP without a link layer", {LINK_RAW_IP}},
    {"raw", "Raw frames (link type USER0)", {LINK_USER0}},
};

struct channel_link {
    int channel_type;
    link_layer link;
};

// The rest are management objects (4), and interfaces whose framing the router does not tell (94, 169).
constexpr channel_link CHANNEL_LINKS[] = {
    {TYPE_PABX, {LINK_EXPORTED_PDU, "q931", 6}},  // behind the port and the number of the call
    {0, {LINK_LAPD}},                             // ISDN D-channel
    {TYPE_ATM_OLD, {LINK_SUNATM}},                // ATM (old)
    {3, {LINK_SUNATM}},                           // ATM
    {5, {LINK_RAW_IP}},                           // IPoX.25
    {6, {LINK_ETHERNET}},                         // LAN
    {7, {LINK_ETHERNET}},                         // LAN 802.3
    {8, {LINK_TOKEN_RING}},                       // TokenBus: as the PCAP files have it
    {9, {LINK_TOKEN_RING}},                       // TokenRing
    {16, {LINK_EXPORTED_PDU, "lapb"}},            // LAPB
    {23, {LINK_PPP}},                             // PPP
    {32, {LINK_FRAME_RELAY}},                     // FrameRelay
    {118, {LINK_CISCO_HDLC}},                     // HDLC
    {131, {LINK_RAW_IP, nullptr, 2}},             // Tunnel: behind two octets of its own
    {135, {LINK_ETHERNET}},                       // an Ethernet without a name of its own
};

// RFC 4717, N-to-one cell mode: a cell with its header, and no control word.
constexpr link_layer CELL_LINK = {LINK_EXPORTED_PDU, "mpls_pw_atm_n1_nocw", 4};

/// Physical-layer events that are about a frame; the others have none.
struct line_error {
    std::uint32_t event;
    std::uint32_t flag;
    std::string_view text;
};
constexpr line_error LINE_ERRORS[] = {
    {3, 0, "line error: aborted"},
    {4, PACKET_CRC_ERROR, "line error: CRC"},
    {5, PACKET_UNALIGNED, "line error: no whole number of octets"},
    {6, 0, "line error: receiver overrun"},
};

const line_error* find_line_error(std::uint32_t event) {
    const auto* const found = std::ranges::find(LINE_ERRORS, event, &line_error::event);
    return found != std::end(LINE_ERRORS) ? found : nullptr;
}

bool is_sent(const display_context& context) { return (context.header->record_flags & RECORD_SENT) != 0; }
bool is_atm(const link_layer& link) { return link.type == LINK_SUNATM; }

void add_prefix(link_frame& made, std::span<const std::uint8_t> octets) {
    std::ranges::copy(octets, made.prefix_octets.begin() + static_cast<std::ptrdiff_t>(made.prefix_length));
    made.prefix_length += octets.size();
}

/// A tag of an exported PDU: big-endian code and length, and the value, which `length` covers with its padding.
void add_tag_header(link_frame& made, std::uint16_t code, std::size_t length) {
    std::array<std::uint8_t, 4> header{};
    store_be16(header.data(), code);
    store_be16(&header[2], static_cast<std::uint16_t>(length));
    add_prefix(made, header);
}

/// The length of a dissector's name in its tag.
std::size_t padded_length(std::string_view dissector) { return (dissector.size() + 3) / 4 * 4; }

void add_exported_pdu_tags(link_frame& made, std::string_view dissector, bool sent) {
    constexpr std::uint16_t TAG_END = 0;
    constexpr std::uint16_t TAG_DISSECTOR = 12;
    constexpr std::uint16_t TAG_DIRECTION = 35;
    std::array<std::uint8_t, 32> name{};
    std::ranges::copy(dissector, name.begin());
    const std::size_t padded = padded_length(dissector);
    add_tag_header(made, TAG_DISSECTOR, padded);
    add_prefix(made, std::span(name).first(padded));
    add_tag_header(made, TAG_DIRECTION, 4);
    const std::uint8_t direction[] = {0, 0, 0, static_cast<std::uint8_t>(sent ? 0 : 1)};
    add_prefix(made, direction);
    add_tag_header(made, TAG_END, 0);
}

struct cell_address {
    std::uint32_t vpi;
    std::uint32_t vci;
};

/// The pseudo-header of SunATM: flags, VPI, VCI. The traffic is LLC where the frame begins so; otherwise the analyser
/// is to find out.
void add_sunatm_header(link_frame& made, cell_address address, octets frame, bool sent) {
    constexpr std::uint8_t FROM_ROUTER = 0x80;
    constexpr std::uint8_t TRAFFIC_LLC = 2;
    const bool llc = frame.be24(0) == 0xAAAA03 || frame.be24(0) == 0xFEFE03;
    std::array<std::uint8_t, 4> header{};
    header[0] = static_cast<std::uint8_t>((sent ? FROM_ROUTER : 0) | (llc ? TRAFFIC_LLC : 0));
    header[1] = static_cast<std::uint8_t>(address.vpi);
    store_be16(&header[2], static_cast<std::uint16_t>(address.vci));
    add_prefix(made, header);
}

/// Puts the right headers before an ATM record. Returns the octets of the record that they stand for.
int add_atm_prefix(const display_context& context, link_frame& made) {
    const bool sent = is_sent(context);
    if ((context.header->record_flags & RECORD_CELL_HEADER) == 0) {
        const std::uint32_t info = context.header->channel_info;
        add_sunatm_header(made, {info >> 24, info >> 8 & 0xFFFF}, context.payload, sent);
        return 0;
    }
    constexpr int CELL_HEADER = 4;
    constexpr std::uint32_t FIRST_OAM_PTI = 4;
    constexpr std::uint32_t FIRST_FREE_VCI = 16;
    // GFC, VPI, VCI, PTI and CLP (ITU-T I.361), in host order.
    const std::uint32_t word = context.payload.le32(0);
    const cell_address address = {word >> 20 & 0xFF, word >> 4 & 0xFFFF};
    made.cell = (word >> 1 & 7) >= FIRST_OAM_PTI || address.vci < FIRST_FREE_VCI;
    if (made.cell) {
        add_exported_pdu_tags(made, CELL_LINK.dissector, sent);
        std::array<std::uint8_t, CELL_HEADER> header{};
        store_be32(header.data(), word & 0x0FFFFFFF);  // four more bits of VPI instead of the GFC
        add_prefix(made, header);
    } else {
        add_sunatm_header(made, address, context.payload.skip(CELL_HEADER), sent);
    }
    return CELL_HEADER;
}

void add_comment(const display_context& context, link_frame& made) {
    const octets& payload = context.payload;
    if (context.channel_type == TYPE_PABX) {
        print_to<"port %d:%d, call 0x%x">(made.comment, payload[0], payload[1], payload.le32(2));
    } else if (context.channel_type == TYPE_WLAN) {
        const char* const name = wlan_oid_name(payload.be32(0), true);
        const char* const request = payload.be32(4) != 0 ? "set request" : "get request";
        std::string_view object = name != nullptr ? name : "";
        object = object.substr(0, object.find_last_not_of(' ') + 1);
        print_to<"%s: %s">(made.comment, is_sent(context) ? request : "receive", object);
    }
}

}  // namespace

std::span<const bchannel_kind> bchannel_kinds() { return BCHANNEL_KINDS; }

const link_layer& cell_link_layer() { return CELL_LINK; }

link_layer find_link_layer(int channel_type, const link_layer& bchannel) {
    if (channel_type == TYPE_BCHANNEL) {
        return bchannel;
    }
    const auto* const found = std::ranges::find(CHANNEL_LINKS, channel_type, &channel_link::channel_type);
    return found != std::end(CHANNEL_LINKS) ? found->link : link_layer{};
}

std::uint32_t prefix_length(const link_layer& link) {
    constexpr std::uint32_t SUNATM_HEADER = 4;
    constexpr std::size_t OTHER_TAGS = 4 + 8 + 4;  // the header of the dissector's, the direction and the end
    if (is_atm(link)) {
        return SUNATM_HEADER;
    }
    return link.dissector != nullptr ? static_cast<std::uint32_t>(padded_length(link.dissector) + OTHER_TAGS) : 0;
}

bool make_frame(const display_context& context, const link_layer& link, link_frame& made) {
    // The low octet of an old ATM interface's info word is a service access point.
    const std::uint32_t event = context.channel_type == TYPE_ATM_OLD ? 0 : context.header->channel_info & 0xFF;
    const line_error* const error = find_line_error(event);
    if (event != 0 && error == nullptr) {
        return false;
    }
    made.cell = false;
    made.prefix_length = 0;
    made.comment.used = 0;
    made.flags = (is_sent(context) ? PACKET_OUTBOUND : PACKET_INBOUND) | (error != nullptr ? error->flag : 0);
    int skipped = link.skipped;
    if (is_atm(link)) {
        skipped = add_atm_prefix(context, made);
    } else if (link.dissector != nullptr) {
        add_exported_pdu_tags(made, link.dissector, is_sent(context));
    }
    const int captured = context.payload.held();
    if (captured <= skipped) {
        return false;
    }
    made.data = context.payload.run(skipped, captured);
    const auto removed = static_cast<std::uint32_t>(skipped);
    const auto whole = std::max(context.original_length, static_cast<std::uint32_t>(captured));
    made.original_length = whole - removed + static_cast<std::uint32_t>(made.prefix_length);
    add_comment(context, made);
    if (error != nullptr) {
        put(made.comment, made.comment.used != 0 ? ", " : "");
        put(made.comment, error->text);
    }
    return true;
}

}  // namespace ifwatch::extcap
