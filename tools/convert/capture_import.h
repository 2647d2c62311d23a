#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "capture/byte_stream.h"
#include "capture/packet_record.h"

namespace ifwatch::convert {

/// How a capture becomes a case.
struct import_settings {
    std::optional<int> channel_type = {};  // instead of the one that fits the link type
    std::optional<std::uint32_t> interface_index = {};
    std::optional<std::string> viewer_options = {};  // instead of those that fit the channel type
    capture::sent_rule sent = {};
    std::uint32_t start_ms = 0;  // time stamp of the first packet
};

/// Takes a part of a case's text; false when it could not be written.
using text_part_writer = std::function<bool(std::string_view part)>;

/// What came of a capture.
struct import_outcome {
    bool done = false;
    bool written = true;         // what there was to write
    std::string error;           // of a capture: where and what is wrong
    std::uint64_t left_out = 0;  // packets of another interface than the one that was named
    std::uint64_t packets = 0;   // in the capture
};

/// Makes the text of a case file of a capture, part by part, while it is read: one record for each packet, without its
/// link header, numbered from 1 with the lost ones counted, or as ifwatch-extcap has noted them; time stamps in ms
/// since the first packet (a packet before that counts as with it); frames cut at the most that a record holds. The
/// text begins with `name` and what is in the capture. Packets that are of several channel types are a mistake.
import_outcome import_capture(capture::byte_stream& stream, const import_settings& settings, std::string_view name,
                              const text_part_writer& write);

}  // namespace ifwatch::convert
