#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "capture/capture_reader.h"
#include "capture/frame_fields.h"
#include "capture/link_types.h"
#include "display/display_context.h"
#include "trace/record_stream.h"

namespace ifwatch::capture {

/// Which packets of a capture the router sent, where nothing in the file tells: none, all, or those from a MAC or an
/// IPv4 address (host order) of its own.
struct sent_nothing {};
struct sent_everything {};
using sent_rule = std::variant<sent_nothing, sent_everything, mac_address, std::uint32_t>;

/// How the packets of an interface become records.
struct packet_source {
    int channel_type = 0;
    link_header header = link_header::NONE;
    bool own = false;     // written by ifwatch-extcap: the packet id holds what no other field of a packet has room for
    bool events = false;  // its packets are whole records
};

/// The source that an interface is: the type that ifwatch-extcap has noted with it, else the type given, else that
/// which fits its link type. Nothing where none does.
[[nodiscard]] std::optional<packet_source> find_packet_source(const capture_interface& described,
                                                              std::optional<int> channel_type);

/// The clock of the records made of a capture. A time stamp of a router's own clock, below 2^32 ms, stays; so does one
/// beyond that comes less than 2^31 ms behind another, since that clock wraps. All others become the time since the
/// first of them, in ms, to which `start_ms` is added. A packet from before that one counts as with it, one without a
/// time as with the packet before it.
struct record_clock {
    std::uint32_t start_ms = 0;
    bool keeps_routers_own = true;                // false: those count from the first packet, too
    std::optional<std::int64_t> first_ns = {};    // of the packet that the others count from, once it came
    std::int64_t routers_ns = 0;                  // of the latest packet that had a time of a router's own clock
    std::optional<std::uint32_t> latest_ms = {};  // what at() gave last

    [[nodiscard]] std::uint32_t at(const captured_packet& packet);
};

/// A packet as the record that the router would have sent.
struct packet_record {
    record_header header;               // the sequence number is 0 where only the caller can count: see own_sequence
    std::uint32_t original_length = 0;  // at most 65535, as its field holds; to be shown as 0 with nothing captured
    std::span<std::uint8_t> octets;     // that were captured: where the packet has them, or put together elsewhere
    bool own_sequence = false;          // the sequence number is the router's: the packet has it noted
    bool sent_by_rule = false;          // nothing in the capture tells the direction, so the rule was asked
};

/// Makes the record of a packet, of at most RECORD_DATA_MAXIMUM octets. They stay where they are in the packet; with
/// what stands in front of a frame in a record they are put together in `data`. False where the packet is too short for
/// the header of its link type.
bool make_packet_record(const captured_packet& packet, const packet_source& source, const sent_rule& sent,
                        record_clock& clock, std::span<std::uint8_t, RECORD_DATA_MAXIMUM> data, packet_record& made);

/// What is wrong with a packet of which no record could be made: "packet 2 at offset 56: 15 octets, but the header of
/// link type 177 has 16".
[[nodiscard]] std::string short_packet_text(const captured_packet& packet, std::uint32_t link_type);

/// As many of a packet's lost ones as the line about lost messages can tell: its number is a signed one of 32 bits.
[[nodiscard]] std::uint32_t told_loss(std::uint64_t lost);

/// Whether the records of this channel type show the addresses that the rule goes by.
[[nodiscard]] bool rule_applies(const sent_rule& rule, int channel_type);

}  // namespace ifwatch::capture
