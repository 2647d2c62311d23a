#include "capture/packet_record.h"

#include <algorithm>
#include <array>
#include <limits>

#include "base/byte_order.h"
#include "capture/channel_types.h"
#include "capture/link_header.h"
#include "capture/own_capture.h"
#include "capture/packet_format.h"
#include "capture/pcapng_blocks.h"
#include "display/channel_display.h"
#include "trace/record_buffer.h"

namespace ifwatch::capture {

namespace {

constexpr std::int64_t NS_PER_MS = 1'000'000;
constexpr std::uint32_t ORIGINAL_LENGTH_MAXIMUM = 0xFFFF;  // the field of a record
constexpr std::uint8_t SOURCE_ROUTED = 0x80;               // of the first octet of a Token Ring source address
constexpr std::uint32_t EVENT_BITS = 0xFF;                 // of the info word
constexpr std::size_t CELL_HEADER = 4;

// In front of each frame of a tunnel: the PPP protocol of IP.
constexpr std::uint16_t TUNNEL_FRONT = 0x0021;

bool is_atm(int channel_type) { return channel_type == CHANNEL_ATM || channel_type == CHANNEL_ATM_OLD; }

/// A record's octets while they are put together: those in front, and the frame.
struct record_parts {
    std::array<std::uint8_t, 14> front{};
    std::size_t front_length = 0;
    std::span<const std::uint8_t> frame;

    void put_front(std::span<const std::uint8_t> octets) {
        std::ranges::copy(octets, front.begin());
        front_length = octets.size();
    }
};

bool is_sent_from(const mac_address& router, int channel_type, frame_fields::mac_header mac) {
    if (channel_type == CHANNEL_TOKEN_RING) {
        mac.source[0] = static_cast<std::uint8_t>(mac.source[0] & ~SOURCE_ROUTED);
    }
    return mac.source == router;
}

bool is_sent(const sent_rule& rule, int channel_type, std::span<const std::uint8_t> record) {
    if (std::holds_alternative<sent_nothing>(rule) || std::holds_alternative<sent_everything>(rule)) {
        return std::holds_alternative<sent_everything>(rule);
    }
    const auto fields = read_frame_fields(channel_type, record);
    if (const auto* const router = std::get_if<mac_address>(&rule)) {
        return fields && fields->mac && is_sent_from(*router, channel_type, *fields->mac);
    }
    const auto router = std::get<std::uint32_t>(rule);
    return fields && ((fields->ip && fields->ip->source == router) || fields->arp_sender == router);
}

std::optional<bool> direction_of(std::uint32_t packet_flags) {
    const std::uint32_t direction = packet_flags & (PACKET_INBOUND | PACKET_OUTBOUND);
    return direction == PACKET_INBOUND || direction == PACKET_OUTBOUND ? std::optional(direction == PACKET_OUTBOUND)
                                                                       : std::nullopt;
}

/// What the packet's id and comment tell of the record that it was made of.
void apply_own_notes(const captured_packet& packet, record_header& header) {
    if (!packet.id) {
        const line_error* const error = find_line_error(packet.flags, packet.comment);
        header.channel_info |= error != nullptr ? error->event : 0;
        return;
    }
    header.sequence = static_cast<std::uint32_t>(*packet.id);
    header.record_flags = static_cast<std::uint32_t>(*packet.id >> 32) & 0xFF;
    header.channel_info |= static_cast<std::uint32_t>(*packet.id >> 40) & EVENT_BITS;
}

/// Puts the header of a single cell in front as a record has it, in host order.
void restore_cell(std::uint32_t address, std::uint16_t lost, record_header& header, record_parts& parts) {
    const cell_header cell = cell_of(address, lost);
    std::array<std::uint8_t, CELL_HEADER> octets{};
    store_be32(octets.data(), swap32(cell.word));
    parts.put_front(octets);
    header.channel_info = (header.channel_info & EVENT_BITS) | cell.info();
}

/// False where the packet ends in the header of its cell.
bool restore_atm(const link_facts& facts, std::uint16_t lost, record_header& header, record_parts& parts) {
    if (facts.cell) {
        if (parts.frame.size() < CELL_HEADER) {
            return false;
        }
        const std::uint32_t word = load_be32(parts.frame.data());
        header.record_flags |= RECORD_CELL_HEADER;
        restore_cell(word, static_cast<std::uint16_t>((lost & 0xF0FFU) | (word & 0xF) << 8), header, parts);
        parts.frame = parts.frame.subspan(CELL_HEADER);
    } else if ((header.record_flags & RECORD_CELL_HEADER) != 0) {
        const std::uint32_t vpi = facts.info >> 24;
        const std::uint32_t vci = facts.info >> 8 & 0xFFFF;
        restore_cell(vpi << 20 | vci << 4, lost, header, parts);
    }
    return true;
}

/// Puts in front of the frame what a record of the channel type has there. False where the packet is too short.
bool restore_front(const captured_packet& packet, const packet_source& source, const link_facts& facts,
                   record_header& header, record_parts& parts) {
    const bool noted = source.own && packet.id.has_value();
    const auto lost = static_cast<std::uint16_t>(noted ? *packet.id >> 48 : 0);
    if (is_atm(source.channel_type)) {
        return restore_atm(facts, lost, header, parts);
    }
    if (source.channel_type == CHANNEL_TUNNEL) {
        std::array<std::uint8_t, 2> octets{};
        store_be16(octets.data(), noted ? lost : TUNNEL_FRONT);
        parts.put_front(octets);
    } else if (source.channel_type == CHANNEL_PABX && source.header == link_header::EXPORTED_PDU) {
        parts.put_front(pabx_front(packet.comment));
    } else {
        parts.put_front(std::span(facts.instead).first(facts.instead_length));
    }
    return true;
}

/// Takes the packet for the record that it is. False where it is shorter than the header of one.
bool take_whole_record(const captured_packet& packet, record_clock& clock, packet_record& made) {
    constexpr std::size_t original_length = 20;  // where its field is
    if (packet.data.size() < RECORD_HEADER_LENGTH) {
        return false;
    }
    const auto octets = packet.data.subspan(RECORD_HEADER_LENGTH);
    made.octets = octets.first(std::min<std::size_t>(octets.size(), RECORD_DATA_MAXIMUM));
    made.header = parse_protocol_part(packet.data.subspan<4, PROTO_LENGTH>());
    made.header.timestamp_ms = clock.at(packet);
    made.original_length = load_be16(&packet.data[original_length]);
    made.own_sequence = true;
    made.sent_by_rule = false;
    return true;
}

/// The octets of the record: what stands in front, and as much of the frame as there is room for.
std::span<std::uint8_t> put_together(const captured_packet& packet, const record_parts& parts,
                                     std::span<std::uint8_t, RECORD_DATA_MAXIMUM> data) {
    const std::size_t kept = std::min(parts.frame.size(), data.size() - parts.front_length);
    if (parts.front_length == 0) {
        return packet.data.subspan(packet.data.size() - parts.frame.size(), kept);
    }
    std::ranges::copy(std::span(parts.front).first(parts.front_length), data.begin());
    std::ranges::copy(parts.frame.first(kept), data.begin() + static_cast<std::ptrdiff_t>(parts.front_length));
    return data.first(parts.front_length + kept);
}

}  // namespace

std::optional<packet_source> find_packet_source(const capture_interface& described, std::optional<int> channel_type) {
    const link_kind* const kind = find_link_kind(described.link_type);
    const link_header header = kind != nullptr ? kind->header : link_header::NONE;
    if (const auto noted = parse_interface_comment(described.comment)) {
        return packet_source{noted->channel_type, header, true, noted->events};
    }
    if (!channel_type && kind != nullptr) {
        channel_type = kind->channel_type;
    }
    return channel_type ? std::optional(packet_source{*channel_type, header}) : std::nullopt;
}

std::uint32_t record_clock::at(const captured_packet& packet) {
    constexpr std::int64_t wrap = (std::int64_t{1} << 32) * NS_PER_MS;
    if (!packet.time_ns) {
        return latest_ms.value_or(start_ms);
    }
    const std::int64_t time = *packet.time_ns;
    const bool routers_own = keeps_routers_own && time >= 0 && (time < wrap || time - routers_ns < wrap / 2);
    if (routers_own) {
        routers_ns = time;
    } else if (!first_ns) {
        first_ns = time;
    }
    const std::int64_t from = routers_own ? 0 : *first_ns;
    // As unsigned numbers, since the difference of two may need 64 bits.
    const std::uint64_t since = time > from ? static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(from) : 0;
    const auto since_ms = static_cast<std::uint32_t>(since / NS_PER_MS);  // wraps as the router's clock does
    latest_ms = (routers_own ? 0 : start_ms) + since_ms;
    return *latest_ms;
}

bool make_packet_record(const captured_packet& packet, const packet_source& source, const sent_rule& sent,
                        record_clock& clock, std::span<std::uint8_t, RECORD_DATA_MAXIMUM> data, packet_record& made) {
    if (source.events) {
        return take_whole_record(packet, clock, made);
    }
    link_facts facts;
    if (!read_link_header(source.header, packet.data, facts)) {
        return false;
    }
    record_parts parts;
    parts.frame = packet.data.subspan(facts.length);
    record_header& header = made.header;
    header = {.channel_info = is_atm(source.channel_type) ? facts.info : 0};
    if (source.own) {
        apply_own_notes(packet, header);
    }
    const std::size_t in_packet = parts.frame.size();
    if (!restore_front(packet, source, facts, header, parts)) {
        return false;
    }
    const std::size_t moved = in_packet - parts.frame.size();  // from the frame to the front
    made.octets = put_together(packet, parts, data);
    const std::size_t original = packet.original_length - facts.length - moved + parts.front_length;
    made.original_length = static_cast<std::uint32_t>(std::min<std::size_t>(original, ORIGINAL_LENGTH_MAXIMUM));
    made.own_sequence = source.own && packet.id.has_value();
    header.timestamp_ms = clock.at(packet);
    const std::optional<bool> told = direction_of(packet.flags) ? direction_of(packet.flags) : facts.sent;
    made.sent_by_rule = !made.own_sequence && !told;
    if (!made.own_sequence) {
        const bool by_router = told ? *told : is_sent(sent, source.channel_type, made.octets);
        header.record_flags |= by_router ? RECORD_SENT : 0;
    }
    return true;
}

std::string short_packet_text(const captured_packet& packet, std::uint32_t link_type) {
    const link_kind* const kind = find_link_kind(link_type);
    const link_header header = kind != nullptr ? kind->header : link_header::NONE;
    const std::string place = packet_place(packet.number, packet.offset) + ": ";
    if (header == link_header::EXPORTED_PDU) {
        return place + "it ends in the tags that link type " + std::to_string(link_type) + " begins with";
    }
    return place + std::to_string(packet.data.size()) + " octets, but the header of link type " +
           std::to_string(link_type) + " has " + std::to_string(link_header_length(header));
}

std::uint32_t told_loss(std::uint64_t lost) {
    constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::uint32_t>(std::min(lost, most));
}

bool rule_applies(const sent_rule& rule, int channel_type) {
    const bool by_mac = std::holds_alternative<mac_address>(rule);
    const bool by_ip = std::holds_alternative<std::uint32_t>(rule);
    if (!by_mac && !by_ip) {
        return true;
    }
    const bool has_addresses = read_frame_fields(channel_type, {}).has_value();
    return has_addresses && (by_ip || channel_type != CHANNEL_TUNNEL);
}

}  // namespace ifwatch::capture
