#pragma once

#include <cstdint>

namespace ifwatch {

struct display_context;

// The classic libpcap file format, version 2.4, in the byte order of this machine.

inline constexpr int PCAP_HEADER_LENGTH = 24;

// A write that took fewer octets than asked is gone on with. The message about one that failed has what its first
// attempt took, and the error of the last.

/// Writes the file header. The link type is `linktype_override` when that is 0 or more, otherwise that of the traced
/// interface. Returns 24, or -1 after a message, with the descriptor closed.
int write_pcap_header(int fd, const display_context& context, std::int32_t linktype_override);

/// Writes the current record, unless it has no data. A tunnel record loses its two leading octets; its lengths in the
/// context stay shortened by them. Returns 0, or -1 after a message, with the descriptor closed.
int write_pcap_record(int fd, display_context& context);

}  // namespace ifwatch
