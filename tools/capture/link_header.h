#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "capture/link_types.h"

namespace ifwatch::capture {

/// What a link header tells of its frame.
struct link_facts {
    std::size_t length = 0;                  // of the header
    std::optional<bool> sent;                // by the router
    std::uint32_t info = 0;                  // VPI and VCI as a record has them
    bool cell = false;                       // a single ATM cell, its header in network order in front
    std::array<std::uint8_t, 14> instead{};  // stands for the header in a record
    std::size_t instead_length = 0;
};

/// How many octets the header of a packet has at least.
[[nodiscard]] std::size_t link_header_length(link_header header);

/// Reads the link header of a packet. False where the packet ends in it.
bool read_link_header(link_header header, std::span<const std::uint8_t> packet, link_facts& facts);

/// What a written link header tells.
struct frame_facts {
    bool sent = false;
    std::uint32_t info = 0;  // VPI and VCI as a record has them
    std::span<const std::uint8_t> frame;
};

/// Whether such a header can be written, not only read.
[[nodiscard]] bool can_be_written(link_header header);

/// Appends the link header of a frame; nothing for one that is only read.
void append_link_header(link_header header, const frame_facts& facts, std::vector<std::uint8_t>& packet);

/// The header of SunATM. The traffic is LLC where the frame begins so; otherwise the analyser is to find out.
[[nodiscard]] std::array<std::uint8_t, 4> sunatm_header(const frame_facts& facts);

/// The dissector of a single ATM cell with its header: RFC 4717, N-to-one cell mode without a control word.
inline constexpr const char* CELL_DISSECTOR = "mpls_pw_atm_n1_nocw";

// Tags of an exported PDU that are known.
inline constexpr std::uint16_t PDU_TAG_END = 0;
inline constexpr std::uint16_t PDU_TAG_DISSECTOR = 12;
inline constexpr std::uint16_t PDU_TAG_DIRECTION = 35;  // 4 octets: 0 sent, 1 received

}  // namespace ifwatch::capture
