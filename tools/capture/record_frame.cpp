#include "capture/record_frame.h"

#include <algorithm>
#include <string_view>

#include "base/byte_order.h"
#include "base/format.h"
#include "capture/channel_types.h"
#include "capture/link_header.h"
#include "capture/own_capture.h"
#include "capture/pcapng_blocks.h"
#include "display/channel_display.h"
#include "display/display_context.h"
#include "display/l1_event.h"
#include "lan/wlan_oid.h"

namespace ifwatch::capture {

namespace {

constexpr link_layer CELL_LINK = {LINK_EXPORTED_PDU, CELL_DISSECTOR, 4};
constexpr link_layer EVENT_LINK = {LINK_USER0};
constexpr int CELL_HEADER = 4;

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
    std::array<std::uint8_t, 32> name{};
    std::ranges::copy(dissector, name.begin());
    const std::size_t padded = padded_length(dissector);
    add_tag_header(made, PDU_TAG_DISSECTOR, padded);
    add_prefix(made, std::span(name).first(padded));
    add_tag_header(made, PDU_TAG_DIRECTION, 4);
    const std::uint8_t direction[] = {0, 0, 0, static_cast<std::uint8_t>(sent ? 0 : 1)};
    add_prefix(made, direction);
    add_tag_header(made, PDU_TAG_END, 0);
}

/// What the id of a packet holds of its record's octets, as far as the packet has no room for them.
struct front_octets {
    int skipped = 0;         // octets that are not in the packet's data
    std::uint16_t lost = 0;  // of the id
};

/// Puts the right headers before an ATM record.
front_octets add_atm_prefix(const display_context& context, link_frame& made) {
    const bool sent = is_sent(context);
    const std::uint32_t info = context.header->channel_info;
    if ((context.header->record_flags & RECORD_CELL_HEADER) == 0) {
        add_prefix(made, sunatm_header({sent, info, context.payload.run(0, context.payload.held())}));
        return {};
    }
    constexpr std::uint32_t first_oam_pti = 4;
    constexpr std::uint32_t first_free_vci = 16;
    constexpr std::uint32_t address_bits = 0xFFFFFF00;  // of the info word
    cell_header cell{context.payload.le32(0), true};    // in host order
    const std::uint32_t address = cell.info();
    const bool management = (cell.word >> 1 & 7) >= first_oam_pti || (address >> 8 & 0xFFFF) < first_free_vci;
    made.cell = management;
    cell.noted = address != 0 && (info & address_bits) == address;
    if (management) {
        add_exported_pdu_tags(made, CELL_DISSECTOR, sent);
        std::array<std::uint8_t, CELL_HEADER> header{};
        store_be32(header.data(), cell.word & 0x0FFFFFFF);  // four more bits of VPI instead of the GFC
        add_prefix(made, header);
    } else {
        add_prefix(made, sunatm_header({sent, address, context.payload.run(CELL_HEADER, context.payload.held())}));
    }
    return {CELL_HEADER, lost_of_cell(cell)};
}

/// Puts before a record what packets of the link layer begin with.
front_octets add_front(const display_context& context, const link_layer& link, link_frame& made) {
    if (is_atm(link)) {
        return add_atm_prefix(context, made);
    }
    if (link.dissector != nullptr) {
        add_exported_pdu_tags(made, link.dissector, is_sent(context));
    }
    return {link.skipped, context.channel_type == CHANNEL_TUNNEL ? context.payload.be16(0) : std::uint16_t{0}};
}

/// 0: none. The low octet of an old ATM interface's info word is a service access point.
std::uint32_t event_code(const display_context& context) {
    return context.channel_type == CHANNEL_ATM_OLD ? 0 : context.header->channel_info & 0xFF;
}

void add_comment(const display_context& context, link_frame& made) {
    const octets& payload = context.payload;
    if (context.channel_type == CHANNEL_PABX) {
        print_to<"port %d:%d, call 0x%x">(made.comment, payload[0], payload[1], payload.le32(2));
    } else if (context.channel_type == CHANNEL_WLAN) {
        const char* const name = wlan_oid_name(payload.be32(0), true);
        const char* const request = payload.be32(4) != 0 ? "set request" : "get request";
        std::string_view object = name != nullptr ? name : "";
        object = object.substr(0, object.find_last_not_of(' ') + 1);
        print_to<"%s: %s">(made.comment, is_sent(context) ? request : "receive", object);
    }
}

}  // namespace

const link_layer& cell_link_layer() { return CELL_LINK; }

std::uint32_t prefix_length(const link_layer& link) {
    constexpr std::uint32_t SUNATM_HEADER = 4;
    constexpr std::size_t OTHER_TAGS = 4 + 8 + 4;  // the header of the dissector's, the direction and the end
    if (is_atm(link)) {
        return SUNATM_HEADER;
    }
    return link.dissector != nullptr ? static_cast<std::uint32_t>(padded_length(link.dissector) + OTHER_TAGS) : 0;
}

bool make_frame(const display_context& context, const link_layer& link, link_frame& made) {
    const std::uint32_t event = event_code(context);
    const line_error* const error = find_line_error(event);
    if (event != 0 && error == nullptr) {
        return false;
    }
    made.cell = false;
    made.prefix_length = 0;
    made.comment.used = 0;
    made.flags = (is_sent(context) ? PACKET_OUTBOUND : PACKET_INBOUND) | (error != nullptr ? error->flag : 0);
    const front_octets front = add_front(context, link, made);
    const int captured = context.payload.held();
    if (captured <= front.skipped) {
        return false;
    }
    made.id = own_packet_id(*context.header, front.lost);
    made.data = context.payload.run(front.skipped, captured);
    const auto removed = static_cast<std::uint32_t>(front.skipped);
    const auto whole = std::max(context.original_length, static_cast<std::uint32_t>(captured));
    made.original_length = whole - removed + static_cast<std::uint32_t>(made.prefix_length);
    add_comment(context, made);
    if (error != nullptr) {
        put(made.comment, made.comment.used != 0 ? ", " : "");
        put(made.comment, error->text);
    }
    return true;
}

const link_layer& event_link_layer() { return EVENT_LINK; }

void make_event(const display_context& context, std::span<const std::uint8_t> record, link_frame& made) {
    constexpr std::uint32_t layer_1_state = 7;  // an event without a direction
    const std::uint32_t event = event_code(context);
    made.cell = false;
    made.prefix_length = 0;
    made.comment.used = 0;
    made.flags = event == layer_1_state ? 0 : is_sent(context) ? PACKET_OUTBOUND : PACKET_INBOUND;
    made.id = own_packet_id(*context.header, 0);
    made.data = record;
    made.original_length = static_cast<std::uint32_t>(record.size());
    if (event == 0) {
        print_to<"DATA[%04ld]">(made.comment, context.original_length);
        return;
    }
    put_l1_event(made.comment, *context.header, context.original_length);
    if (made.comment.used == 0) {
        print_to<"event %d">(made.comment, event);
    }
}

}  // namespace ifwatch::capture
