#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "capture/capture_reader.h"
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
    bool own = false;  // written by ifwatch-extcap: the packet id holds what no other field of a packet has room for
};

/// The source that an interface is: the type that ifwatch-extcap has noted with it, else the type given, else that
/// which fits its link type. Nothing where none does.
[[nodiscard]] std::optional<packet_source> find_packet_source(const capture_interface& described,
                                                              std::optional<int> channel_type);

/// The clock of the records made of a capture: a router's own time stamps, below 2^32 ms, stay; others become the time
/// since the first packet, in ms, to which `start_ms` is added. A packet from before the first counts as with it.
struct record_clock {
    std::uint32_t start_ms = 0;
    std::optional<std::int64_t> first_ns = {};  // of the first packet that had a time
    bool routers_own = false;                   // what the first packet was found to have

    [[nodiscard]] std::uint32_t at(const captured_packet& packet);
};

/// A packet as the record that the router would have sent.
struct packet_record {
    record_header header;              // but the sequence number, which the caller counts: see lost and id of the packet
    std::uint32_t original_length = 0;
    int captured_length = 0;           // octets of `data` in use
};

/// Makes the record of a packet; its octets, at most RECORD_DATA_MAXIMUM with what stands in front of a frame in a
/// record, go to `data`. False where the packet is too short for the header of its link type.
bool make_packet_record(const captured_packet& packet, const packet_source& source, const sent_rule& sent,
                        record_clock& clock, std::span<std::uint8_t, RECORD_DATA_MAXIMUM> data, packet_record& made);

}  // namespace ifwatch::capture
