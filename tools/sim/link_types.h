#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sim/case_file.h"

namespace ifwatch::sim {

/// What stands in front of the frame in a packet of a PCAP file.
enum class link_header {
    NONE,
    DIRECTION,   // one octet: 0 received, otherwise sent
    LINUX_LAPD,  // 16 octets, big-endian: packet type (2; 4: sent), ARPHRD (2), address length (2), address (8), type
                 // (2)
    SUNATM,      // 4 octets: bit 7 sent, bits 3-0 kind of traffic; VPI; VCI (2)
};

/// A link type of the tcpdump.org list, and the interface of the router that carries such frames.
struct link_kind {
    std::uint32_t link_type;
    const char* name;
    link_header header;
    int channel_type;
    const char* viewer_options;  // that show every layer of it
};

/// The kind of a link type; nullptr when no interface of the router carries such frames.
[[nodiscard]] const link_kind* find_link_kind(std::uint32_t link_type);

/// The link type that fits the frames of a channel type, one that tells the direction where there is one; nothing for
/// interfaces whose records have no link type. A B-channel counts as PPP.
[[nodiscard]] std::optional<std::uint32_t> link_type_of(int channel_type);

/// The link type that fits the frames of a case. What a B-channel carries is told by the first of its options lines:
/// with -p, or without options, PPP; else with -2 or -3 LAPB; else with -f Frame Relay; nothing for all others.
[[nodiscard]] std::optional<std::uint32_t> link_type_of(const trace_case& exported);

/// The viewer options that show every layer of a channel type; for one that has no decoder, hexadecimal output.
[[nodiscard]] const char* viewer_options_of(int channel_type);

/// How many octets the link header has.
[[nodiscard]] std::size_t link_header_length(link_header header);

/// What a link header tells.
struct link_facts {
    std::optional<bool> sent;  // by the router
    std::uint32_t info = 0;    // VPI and VCI as a record has them
};

/// Reads the link header of a packet that is at least as long.
[[nodiscard]] link_facts read_link_header(link_header header, std::span<const std::uint8_t> packet);

/// Appends the link header for a record.
void append_link_header(link_header header, const case_record& record, std::vector<std::uint8_t>& packet);

}  // namespace ifwatch::sim
