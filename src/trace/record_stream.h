#pragma once

#include <cstdint>
#include <span>

#include "trace/trace_target.h"

namespace ifwatch {

struct display_context;
struct record_buffer;

// A trace record, all integers big-endian:
//
//     0-1    length of the whole record          8-11   flags
//     2-3    length of the protocol part: 16     12-15  channel info
//     4-7    time stamp, ms                      16-19  sequence number
//                                                20-21  length of the frame on the line
//     22 ..  the captured octets

inline constexpr int RECORD_HEADER_LENGTH = 22;
inline constexpr int RECORD_DATA_MAXIMUM = 8192;  // captured octets of one record

struct stream_settings {
    int pcap_fd = -1;    // the open PCAP sink; -1: none
    bool print = false;  // decode although there is a sink
};

/// What came of reading a record.
enum class record_read : std::uint8_t {
    RECORD,
    END,     // of the stream; it may have ended inside a record header
    BROKEN,  // the stream ended or failed inside a record, or the record is longer than can be held
};

// Of a reader that has octets of the stream in memory: what receive_record() goes by, and what it tells.

using record_octets = std::span<const std::uint8_t, RECORD_HEADER_LENGTH>;

/// The captured octets that the header of a record announces; below 0 in a record shorter than its header.
[[nodiscard]] int announced_data(record_octets header);
[[nodiscard]] bool can_be_held(int announced);

/// Tells why there is no record, `got` being what read_n() returned for its header or its data. Returns END or BROKEN.
record_read report_no_header(int got);
record_read report_no_data(int got, int announced);

/// Reads one trace record into the buffer and makes it the current one of the context. A message tells why there is
/// none.
record_read receive_record(int socket_fd, record_buffer& buffer, display_context& context);

/// Reads trace records until the daemon closes the connection or a record is cut off or longer than can be held, and
/// writes each to the sink and decodes it as the settings say. Returns 0, or 1 when the standard output failed or
/// there is no memory for a record.
int receive_records(int socket_fd, const stream_settings& settings, display_context& context);

}  // namespace ifwatch
