#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "base/text_sink.h"

namespace ifwatch {
struct display_context;
}

namespace ifwatch::extcap {

// Link types of the public list of pcap(5) and pcapng.
enum link_type : std::uint16_t {
    LINK_ETHERNET = 1,
    LINK_TOKEN_RING = 6,
    LINK_PPP = 9,
    LINK_RAW_IP = 101,
    LINK_CISCO_HDLC = 104,
    LINK_FRAME_RELAY = 107,
    LINK_SUNATM = 123,
    LINK_USER0 = 147,  // frames of no named kind: the analyser's user decides what they are
    LINK_LAPD = 203,
    LINK_EXPORTED_PDU = 252,  // frames that name their dissector
};

/// How the frames of an interface are handed to the analyser.
struct link_layer {
    link_type type = LINK_USER0;
    const char* dissector = nullptr;  // of an exported PDU: what reads the frame
    int skipped = 0;                  // octets before the frame, left out
};

/// What a B-channel carries, which the router does not tell.
struct bchannel_kind {
    const char* word;   // as the option has it
    const char* title;  // as the analyser shows it
    link_layer link;
};

/// All of them, the default first.
[[nodiscard]] std::span<const bchannel_kind> bchannel_kinds();

/// The link layer of a channel type; that of a B-channel is the chosen one.
[[nodiscard]] link_layer find_link_layer(int channel_type, const link_layer& bchannel);

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
    text_buffer<160> comment;

    [[nodiscard]] std::span<const std::uint8_t> prefix() const { return {prefix_octets.data(), prefix_length}; }
};

/// Makes the current record of the context a packet of this link layer. False for a record that is no frame: without
/// octets, or an event of the physical layer. A frame that a line error has damaged is one, with that in its flags or
/// its comment.
bool make_frame(const display_context& context, const link_layer& link, link_frame& made);

}  // namespace ifwatch::extcap
