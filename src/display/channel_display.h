#pragma once

#include <cstdint>

#include "base/text_sink.h"
#include "display/display_context.h"

namespace ifwatch {

// Bits of the record flags.
inline constexpr std::uint32_t RECORD_SENT = 0x01;
inline constexpr std::uint32_t RECORD_CELL_HEADER = 0x80;  // the payload begins with an ATM cell header

/// The record that is being shown, and what its header line has found out about it.
struct shown_record {
    display_context& context;
    const record_header& header;
    octets payload;
    std::uint32_t original_length = 0;
    std::uint32_t event_code = 0;  // 0: data
    char direction = '.';          // 'X': sent by the router, 'R': received
    bool has_cell_header = false;
    int cell_class = 0;  // of an ATM record
};

/// What a channel type puts into the header line and does with its payload.
struct channel_display {
    int channel_type;
    /// Appends to the header text. False when records like this one are not shown at all.
    bool (*header)(text_sink& out, shown_record& record);
    /// Decodes the payload; nullptr for a channel type that has no decoder.
    void (*payload)(shown_record& record);
};

/// The display of a channel type; one that is not known shows the direction and no payload.
[[nodiscard]] const channel_display& find_channel_display(int channel_type);

}  // namespace ifwatch
