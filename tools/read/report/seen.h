#pragma once

#include <cstdint>
#include <deque>

#include "read/report/interface_report.h"

namespace ifwatch::reporting {

/// A record with that number and time came; a gap of the numbers before it are records that were lost.
void count_record(seen_counts& seen, place at);

/// A frame of so many octets on the line; `known`: to a decoder.
void count_frame(seen_counts& seen, bool sent, std::uint32_t original_length, bool known);

/// Prints the table of what was seen of each interface; `more_records` came from interfaces that are not told apart.
void print_seen(const std::deque<interface_report>& interfaces, std::uint64_t more_records);

}  // namespace ifwatch::reporting
