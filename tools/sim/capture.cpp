#include "sim/capture.h"

#include <algorithm>

#include "sim/channel_types.h"
#include "sim/link_types.h"
#include "sim/pcap_file.h"
#include "trace/ifc_types.h"
#include "trace/record_stream.h"

namespace ifwatch::sim {

namespace {

constexpr std::int64_t NS_PER_MS = 1'000'000;
constexpr std::uint32_t ORIGINAL_LENGTH_MAXIMUM = 0xFFFF;  // the field of a record
constexpr std::uint32_t CELL_HEADER = 0x80;                // flag of a record
constexpr std::uint32_t EVENT_BITS = 0xFF;                 // of the info word
constexpr std::uint8_t SOURCE_ROUTED = 0x80;               // of the first octet of a Token Ring source address

// In front of each frame of a tunnel: the PPP protocol of IP.
constexpr std::uint8_t TUNNEL_PREFIX[] = {0x00, 0x21};

bool is_atm(int channel_type) { return channel_type == CHANNEL_ATM || channel_type == CHANNEL_ATM_OLD; }

bool is_sent_from(const mac_address& router, int channel_type, frame_fields::mac_header mac) {
    if (channel_type == CHANNEL_TOKEN_RING) {
        mac.source[0] = static_cast<std::uint8_t>(mac.source[0] & ~SOURCE_ROUTED);
    }
    return mac.source == router;
}

bool is_sent(const sent_rule& rule, int channel_type, std::span<const std::uint8_t> frame) {
    if (std::holds_alternative<sent_nothing>(rule) || std::holds_alternative<sent_everything>(rule)) {
        return std::holds_alternative<sent_everything>(rule);
    }
    const auto fields = read_frame_fields(channel_type, frame);
    if (const auto* const router = std::get_if<mac_address>(&rule)) {
        return fields && fields->mac && is_sent_from(*router, channel_type, *fields->mac);
    }
    return fields && fields->ip && fields->ip->source == std::get<std::uint32_t>(rule);
}

std::uint32_t timestamp_of(const pcap_packet& packet, const pcap_packet& first, std::uint32_t start_ms) {
    const std::int64_t since_first = std::max<std::int64_t>(packet.time_ns - first.time_ns, 0);
    return start_ms + static_cast<std::uint32_t>(since_first / NS_PER_MS);  // wraps as the router's clock does
}

case_record make_record(const pcap_packet& packet, link_header header, int channel_type, const sent_rule& rule) {
    const std::size_t header_length = link_header_length(header);
    const link_facts facts = read_link_header(header, packet.data);
    const auto prefix = std::span(TUNNEL_PREFIX).first(channel_type == CHANNEL_TUNNEL ? std::size(TUNNEL_PREFIX) : 0);
    const auto frame = packet.data.subspan(header_length);
    const auto kept = frame.first(std::min(frame.size(), std::size_t{RECORD_DATA_MAXIMUM} - prefix.size()));
    const std::size_t original = packet.original_length - header_length + prefix.size();
    case_record record;
    record.data.resize(prefix.size() + kept.size());
    std::ranges::copy(kept, std::ranges::copy(prefix, record.data.begin()).out);
    record.original_length = static_cast<std::uint16_t>(std::min<std::size_t>(original, ORIGINAL_LENGTH_MAXIMUM));
    record.info = is_atm(channel_type) ? facts.info : 0;
    record.flags = facts.sent.value_or(is_sent(rule, channel_type, record.data)) ? 1 : 0;
    return record;
}

bool append_records(const pcap_file& capture, link_header header, const import_settings& settings, trace_case& imported,
                    std::string& error) {
    const std::size_t header_length = link_header_length(header);
    for (std::size_t i = 0; i < capture.packets.size(); ++i) {
        const pcap_packet& packet = capture.packets[i];
        if (packet.data.size() < header_length) {
            error = packet_place(capture, i) + ": " + std::to_string(packet.data.size()) +
                    " octets, but the header of link type " + std::to_string(capture.link_type) + " has " +
                    std::to_string(header_length);
            return false;
        }
        case_record& record =
            imported.records.emplace_back(make_record(packet, header, imported.channel_type, settings.sent));
        record.timestamp_ms = timestamp_of(packet, capture.packets.front(), settings.start_ms);
        record.sequence = static_cast<std::uint32_t>(i + 1);
    }
    return true;
}

/// Whether the records of this channel type show the addresses that the rule goes by.
bool rule_applies(const sent_rule& rule, int channel_type) {
    const bool by_mac = std::holds_alternative<mac_address>(rule);
    const bool by_ip = std::holds_alternative<std::uint32_t>(rule);
    const bool has_addresses = read_frame_fields(channel_type, {}).has_value();
    return by_mac ? has_addresses && channel_type != CHANNEL_TUNNEL : !by_ip || has_addresses;
}

std::string title_of(const pcap_file& capture, const link_kind* kind) {
    std::string title = std::to_string(capture.packets.size()) +
                        (capture.packets.size() == 1 ? " packet" : " packets") + " of link type " +
                        std::to_string(capture.link_type);
    return kind != nullptr ? title + " (" + kind->name + ")" : title;
}

std::string channel_text(int channel_type) {
    return "channel type " + std::to_string(channel_type) + " (" + ifc_type_entry(channel_type).name + ")";
}

/// Events of the line; and cells that have their header in front, which no link type has room for.
bool is_frame(const trace_case& exported, const case_record& record) {
    const bool event = (record.info & EVENT_BITS) != 0 && exported.channel_type != CHANNEL_ATM_OLD;
    return !event && (!is_atm(exported.channel_type) || (record.flags & CELL_HEADER) == 0);
}

void append_record_packet(const case_record& record, int channel_type, link_header header,
                          std::vector<std::uint8_t>& file) {
    const std::size_t prefix =
        channel_type == CHANNEL_TUNNEL ? std::min(record.data.size(), std::size(TUNNEL_PREFIX)) : 0;
    std::vector<std::uint8_t> packet;
    append_link_header(header, record, packet);
    const std::size_t header_length = packet.size();
    packet.insert(packet.end(), record.data.begin() + static_cast<std::ptrdiff_t>(prefix), record.data.end());
    const std::size_t original = std::max<std::size_t>(record.original_length, record.data.size());
    append_pcap_packet(file, {.offset = 0,
                              .time_ns = std::int64_t{record.timestamp_ms} * NS_PER_MS,
                              .original_length = static_cast<std::uint32_t>(original - prefix + header_length),
                              .data = packet});
}

}  // namespace

bool import_capture(std::span<const std::uint8_t> file, const import_settings& settings, trace_case& imported,
                    std::string& title, std::string& error) {
    pcap_file capture;
    if (!parse_pcap(file, capture, error)) {
        return false;
    }
    const link_kind* const kind = find_link_kind(capture.link_type);
    if (kind == nullptr && !settings.channel_type) {
        error = "offset 20: link type " + std::to_string(capture.link_type) +
                " fits no channel type; name one with --channel";
        return false;
    }
    imported.channel_type = settings.channel_type ? *settings.channel_type : kind->channel_type;
    if (!rule_applies(settings.sent, imported.channel_type)) {
        error = "the address of --sent is not in the frames of " + channel_text(imported.channel_type);
        return false;
    }
    imported.interface_index = settings.interface_index;
    const bool fits = kind != nullptr && kind->channel_type == imported.channel_type;
    imported.options = {
        settings.viewer_options.value_or(fits ? kind->viewer_options : viewer_options_of(imported.channel_type))};
    title = title_of(capture, kind);
    return append_records(capture, kind != nullptr ? kind->header : link_header::NONE, settings, imported, error);
}

bool export_capture(const trace_case& exported, std::optional<std::uint32_t> link_type, std::vector<std::uint8_t>& file,
                    std::size_t& left_out, std::string& error) {
    link_type = link_type ? link_type : link_type_of(exported);
    if (!link_type) {
        error = "no link type fits " + channel_text(exported.channel_type) +
                (exported.channel_type == CHANNEL_B ? " with these options" : "") + "; name one with --link-type";
        return false;
    }
    const link_kind* const kind = find_link_kind(*link_type);
    append_pcap_header(file, *link_type);
    left_out = 0;
    for (const case_record& record : exported.records) {
        if (is_frame(exported, record)) {
            append_record_packet(record, exported.channel_type, kind != nullptr ? kind->header : link_header::NONE,
                                 file);
        } else {
            ++left_out;
        }
    }
    return true;
}

}  // namespace ifwatch::sim
