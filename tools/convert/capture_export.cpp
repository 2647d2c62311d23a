#include "convert/capture_export.h"

#include <algorithm>
#include <sstream>
#include <string_view>

#include "capture/channel_types.h"
#include "capture/link_header.h"
#include "capture/link_types.h"
#include "capture/pcap_writer.h"
#include "trace/ifc_types.h"

namespace ifwatch::convert {

namespace {

using namespace capture;

constexpr std::int64_t NS_PER_MS = 1'000'000;
constexpr std::uint32_t CELL_HEADER = 0x80;  // flag of a record
constexpr std::uint32_t EVENT_BITS = 0xFF;   // of the info word
constexpr std::size_t TUNNEL_FRONT = 2;      // octets in front of each frame of a tunnel

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
        return LINK_PPP_WITH_DIRECTION;
    }
    if (asks("23")) {
        return LINK_LAPB_WITH_DIRECTION;
    }
    return asks("f") ? std::optional<std::uint32_t>(LINK_FRAME_RELAY) : std::nullopt;
}

/// Events of the line; and cells that have their header in front, which no link type has room for.
bool is_frame(const cases::trace_case& exported, const cases::case_record& record) {
    const bool old_atm = exported.channel_type == CHANNEL_ATM_OLD;
    const bool event = (record.info & EVENT_BITS) != 0 && !old_atm;
    const bool cell = (record.flags & CELL_HEADER) != 0 && (old_atm || exported.channel_type == CHANNEL_ATM);
    return !event && !cell;
}

void append_record_packet(const cases::case_record& record, int channel_type, link_header header,
                          std::vector<std::uint8_t>& file) {
    const std::size_t front = channel_type == CHANNEL_TUNNEL ? std::min(record.data.size(), TUNNEL_FRONT) : 0;
    std::vector<std::uint8_t> packet;
    append_link_header(header, {.sent = (record.flags & 1) != 0, .info = record.info, .frame = record.data}, packet);
    const std::size_t header_length = packet.size();
    packet.insert(packet.end(), record.data.begin() + static_cast<std::ptrdiff_t>(front), record.data.end());
    const std::size_t original = std::max<std::size_t>(record.original_length, record.data.size());
    append_pcap_packet(file, {.time_ns = std::int64_t{record.timestamp_ms} * NS_PER_MS,
                              .original_length = static_cast<std::uint32_t>(original - front + header_length),
                              .data = packet});
}

}  // namespace

std::optional<std::uint32_t> link_type_of_case(const cases::trace_case& exported) {
    if (exported.channel_type != CHANNEL_B) {
        return link_type_of(exported.channel_type);
    }
    return bchannel_link_type(exported.options.empty() ? "" : letters_of(exported.options.front()));
}

bool export_capture(const cases::trace_case& exported, std::optional<std::uint32_t> link_type,
                    std::vector<std::uint8_t>& file, std::size_t& left_out, std::string& error) {
    link_type = link_type ? link_type : link_type_of_case(exported);
    if (!link_type) {
        error = "no link type fits channel type " + std::to_string(exported.channel_type) + " (" +
                ifc_type_entry(exported.channel_type).name + ")" +
                (exported.channel_type == CHANNEL_B ? " with these options" : "") + "; name one with --link-type";
        return false;
    }
    const link_kind* const kind = find_link_kind(*link_type);
    const link_header header = kind != nullptr ? kind->header : link_header::NONE;
    if (!can_be_written(header)) {
        error = "link type " + std::to_string(*link_type) + " (" + kind->name +
                ") is only read; name another one with --link-type";
        return false;
    }
    append_pcap_header(file, *link_type);
    left_out = 0;
    for (const cases::case_record& record : exported.records) {
        if (is_frame(exported, record)) {
            append_record_packet(record, exported.channel_type, header, file);
        } else {
            ++left_out;
        }
    }
    return true;
}

}  // namespace ifwatch::convert
