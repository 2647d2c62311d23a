#pragma once

#include <cstdint>

namespace ifwatch::capture {

/// How the time stamps of a pcapng interface count.
struct time_scale {
    std::uint8_t resolution = 6;  // units of 10^-N s, with bit 7 set of 2^-N s
    std::int64_t offset_s = 0;    // added to each
};

/// A time stamp in nanoseconds since 1970; what 64 bits cannot hold becomes the nearest that they can.
[[nodiscard]] std::int64_t nanoseconds(std::uint64_t units, const time_scale& scale);

}  // namespace ifwatch::capture
