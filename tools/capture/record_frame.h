#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "base/text_sink.h"
#include "capture/link_types.h"

namespace ifwatch {
struct display_context;
}

namespace ifwatch::capture {

/// Cells that carry no user data: those of ATM interfaces go under a link layer of their own.
[[nodiscard]] const link_layer& cell_link_layer();

/// How many octets the packets of this link layer have before those that are the record's own.
[[nodiscard]] std::uint32_t prefix_length(const link_layer& link);

/// A record made into a packet. `data` lies in the record.
struct link_frame {
    bool cell = false;  // of cell_link_layer instead of the interface's own
    std::array<std::uint8_t, 64> prefix_octets{};
    std::size_t prefix_length = 0;
    std::span<const std::uint8_t> data;
    std::uint32_t original_length = 0;  // with the prefix
    std::uint32_t flags = 0;            // direction and line errors, as pcapng has them
    std::uint64_t id = 0;               // what own_capture.h says
    text_buffer<160> comment;

    [[nodiscard]] std::span<const std::uint8_t> prefix() const { return {prefix_octets.data(), prefix_length}; }
};

/// Makes the current record of the context a packet of this link layer, of which make_packet_record() makes the record
/// again. False for a record that is no frame: without octets, or an event of the physical layer. A frame that a line
/// error has damaged is one, with that in its flags or its comment.
bool make_frame(const display_context& context, const link_layer& link, link_frame& made);

/// The link layer of records that are no frames.
[[nodiscard]] const link_layer& event_link_layer();

/// Makes such a record, the current one of the context, a packet: `record` is all of it, from its header on. The
/// comment is the event as it is printed.
void make_event(const display_context& context, std::span<const std::uint8_t> record, link_frame& made);

}  // namespace ifwatch::capture
