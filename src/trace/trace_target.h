#pragma once

#include <cstdint>
#include <span>

namespace ifwatch {

/// The interface to trace, as the trace request names it.
struct trace_target {
    std::int32_t version = 3;
    std::int32_t slot = 0;
    std::int32_t unit = 0;
    std::int32_t channel = 0;  // 0: D-channel or no ISDN, 1..31: B-channel; the whole index of a virtual interface
    std::int32_t capture_length = -1;  // octets captured of each frame; -1: whole frames
};

inline constexpr int TRACE_REQUEST_LENGTH = 20;

/// The interface index of a target: 1000 * slot + 100 * unit + channel, modulo 2^32.
[[nodiscard]] std::int32_t interface_index(const trace_target& target);

/// Sets slot, unit and channel to those of an interface index. 100000 to 149999 are virtual interfaces, whose channel
/// is the index; from 200000 to 499999 a unit has two digits; everywhere else index = 1000 * slot + 100 * unit +
/// channel.
void split_interface_index(trace_target& target, std::int32_t index);

/// Writes the request that opens a session:
///
///      0         4         8         12        16
///     +---------+---------+---------+---------+----------------+
///     | version | slot    | unit    | channel | capture length |   five big-endian 32-bit words
///     +---------+---------+---------+---------+----------------+
void encode_trace_request(const trace_target& target, std::span<std::uint8_t, TRACE_REQUEST_LENGTH> request);

}  // namespace ifwatch
