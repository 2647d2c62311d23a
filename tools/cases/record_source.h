#pragma once

#include <cstdint>
#include <vector>

#include "cases/case_file.h"

namespace ifwatch::cases {

/// Appends a record as it goes over the wire: the big-endian header of 22 octets, then the data, at most
/// `capture_length` octets of them (negative: all). The original length stays.
///
///     octets 0-1    length of the whole record
///     octets 2-3    length of the protocol part, 16
///     octets 4-7    time stamp in ms          octets 8-11   flags
///     octets 12-15  channel information       octets 16-19  sequence number
///     octets 20-21  original length of the frame
void append_record(std::vector<std::uint8_t>& buffer, const case_record& record, std::int32_t capture_length);

/// How far time stamps and sequence numbers move from one round of a looped case to the next: the time from the first
/// record to the last and one mean distance more; the numbers go on behind the last.
struct loop_step {
    std::uint32_t time_ms = 0;
    std::uint32_t sequence = 0;
};
[[nodiscard]] loop_step step_of(const std::vector<case_record>& records);

}  // namespace ifwatch::cases
