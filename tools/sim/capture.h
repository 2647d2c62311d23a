#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "sim/case_file.h"
#include "sim/frame_fields.h"

namespace ifwatch::sim {

/// Which packets of a capture the router sent, where their link header does not tell: none, all, or those from a MAC
/// or an IPv4 address of its own.
struct sent_nothing {};
struct sent_everything {};
using sent_rule = std::variant<sent_nothing, sent_everything, mac_address, std::uint32_t>;

/// How a capture becomes a case.
struct import_settings {
    std::optional<int> channel_type = {};  // instead of the one that fits the link type
    std::optional<std::uint32_t> interface_index = {};
    std::optional<std::string> viewer_options = {};  // instead of those that fit the channel type
    sent_rule sent = {};
    std::uint32_t start_ms = 0;  // time stamp of the first packet
};

/// Makes a case of a classic PCAP file: one record for each packet, without its link header, numbered from 1; time
/// stamps in ms since the first packet (a packet before that counts as with it); frames cut at the most that a record
/// holds. `title` says what it was made of. False with where and what is wrong in `error`.
bool import_capture(std::span<const std::uint8_t> file, const import_settings& settings, trace_case& imported,
                    std::string& title, std::string& error);

/// Makes a classic PCAP file of a case, of the link type given or else that which fits its channel type, and
/// on a B-channel its options. Records that are no frames, events of the line and single ATM cells, are left out and
/// counted in `left_out`. False with what is wrong in `error`.
bool export_capture(const trace_case& exported, std::optional<std::uint32_t> link_type, std::vector<std::uint8_t>& file,
                    std::size_t& left_out, std::string& error);

}  // namespace ifwatch::sim
