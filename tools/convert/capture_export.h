#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cases/case_file.h"

namespace ifwatch::convert {

/// The link type that fits the frames of a case. What a B-channel carries is told by the first of its options lines:
/// with -p, or without options, PPP; else with -2 or -3 LAPB; else with -f Frame Relay; nothing for all others.
[[nodiscard]] std::optional<std::uint32_t> link_type_of_case(const cases::trace_case& exported);

/// Makes a classic PCAP file of a case, of the link type given or else that which fits its channel type, and
/// on a B-channel its options. Records that are no frames, events of the line and single ATM cells, are left out and
/// counted in `left_out`. False with what is wrong in `error`.
bool export_capture(const cases::trace_case& exported, std::optional<std::uint32_t> link_type,
                    std::vector<std::uint8_t>& file, std::size_t& left_out, std::string& error);

}  // namespace ifwatch::convert
