#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "display/display_context.h"

namespace ifwatch::capture {

// What ifwatch-extcap notes in a capture beside the frames, so that the records can be made of them again:
//
//     comment of an interface   "interface type 0"; "interface type 0, events" of one whose packets are whole records
//     comment of a packet       "port 2:5, call 0x1234" and "line error: CRC", with ", " between them
//     id of a packet            bits 31-0 sequence number, 39-32 record flags, 47-40 low octet of the info word, 63-48
//                               what the frame has lost of the record's octets: of a tunnel the two in front, of an ATM
//                               cell its GFC (63-60), PTI and CLP (59-56), and whether the info word has its address
//                               (48)

/// What the comment of an interface tells.
struct noted_interface {
    int channel_type = 0;
    bool events = false;  // its packets are records that have no frame, from their header on

    bool operator==(const noted_interface&) const = default;
};

[[nodiscard]] std::string interface_type_comment(int channel_type, bool events = false);

/// What such a comment tells; nothing of any other.
[[nodiscard]] std::optional<noted_interface> parse_interface_comment(std::string_view comment);

/// The id of a record's packet. `lost` are its bits 63-48.
[[nodiscard]] constexpr std::uint64_t own_packet_id(const record_header& header, std::uint16_t lost) {
    return std::uint64_t{lost} << 48 | std::uint64_t{header.channel_info & 0xFF} << 40 |
           std::uint64_t{header.record_flags & 0xFF} << 32 | header.sequence;
}

/// GFC, VPI, VCI, PTI and CLP of an ATM cell (ITU-T I.361), and whether the record's info word has VPI and VCI, too.
struct cell_header {
    std::uint32_t word = 0;
    bool noted = false;

    [[nodiscard]] constexpr std::uint32_t info() const {
        return noted ? (word >> 20 & 0xFF) << 24 | (word >> 4 & 0xFFFF) << 8 : 0;
    }
};
[[nodiscard]] constexpr std::uint16_t lost_of_cell(const cell_header& cell) {
    return static_cast<std::uint16_t>(cell.word >> 28 << 12 | (cell.word & 0xF) << 8 | (cell.noted ? 1U : 0U));
}
[[nodiscard]] constexpr cell_header cell_of(std::uint32_t address, std::uint16_t lost) {
    return {(address & 0x0FFFFFF0) | std::uint32_t{lost} >> 12 << 28 | (std::uint32_t{lost} >> 8 & 0xF),
            (lost & 1U) != 0};
}

/// The six octets in front of a PABX record, from the comment of its packet; zeros where that does not tell.
[[nodiscard]] std::array<std::uint8_t, 6> pabx_front(std::string_view comment);

/// An event of the physical layer that is about a frame; the others have none.
struct line_error {
    std::uint32_t event;  // the low octet of the info word
    std::uint32_t flag;   // of a packet, as pcapng has them; 0: none
    std::string_view text;
};

/// nullptr for an event that is about no frame.
[[nodiscard]] const line_error* find_line_error(std::uint32_t event);

/// The line error that a packet's flags and its comment tell; nullptr where they tell none.
[[nodiscard]] const line_error* find_line_error(std::uint32_t packet_flags, std::string_view comment);

}  // namespace ifwatch::capture
