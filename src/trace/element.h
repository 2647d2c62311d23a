#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace ifwatch {

// Every message after the trace request is built of elements: a big-endian 32-bit header word, the type in its low 8
// bits and the data length in the upper 24, and the data. Four zero octets, the end element, close a sequence.

enum element_type : std::uint8_t {
    ELEMENT_END = 0,
    ELEMENT_CHANTYPE = 1,
    ELEMENT_RVERSION = 2,
    ELEMENT_START = 3,
    ELEMENT_IGNORED = 4,
    ELEMENT_ERROR = 5,
    ELEMENT_FILTER = 6,
    ELEMENT_VCI = 7,
    ELEMENT_VPI = 8,
    ELEMENT_LINE_FLAG = 9,
    ELEMENT_AUTH = 10,
    ELEMENT_INFO = 11,
};

/// The length of an element whose data are not counted: read as no data, written for a filter section.
inline constexpr std::uint32_t ELEMENT_OPEN_LENGTH = 0xFFFFFF;

[[nodiscard]] constexpr std::uint32_t element_header(std::uint8_t type, std::uint32_t length) {
    return length << 8 | type;
}
[[nodiscard]] constexpr int element_type_of(std::uint32_t header) { return static_cast<int>(header & 0xFF); }

/// Octets of data that follow the header on the wire; 0 for an open length.
[[nodiscard]] constexpr std::uint32_t element_data_length(std::uint32_t header) {
    return header >> 8 == ELEMENT_OPEN_LENGTH ? 0 : header >> 8;
}

/// Reads exactly `n` octets. Returns n; 0 when the stream ended before, also after a part; -1 on a read error (errno
/// set). Short reads and reads interrupted by a signal go on.
int read_n(int fd, std::uint8_t* buffer, int n);

/// Reads one element. `header` is 0 until the four header octets are read; the data are placed at the start of
/// `buffer`, without a terminator. Returns nullptr, or one of three texts: "missing elem header data", "missing elem
/// data", and "read buffer overflow" for data that do not leave an octet of the buffer free (they stay unread).
const char* read_element(int fd, std::uint32_t& header, std::span<std::uint8_t> buffer);

/// Sends the whole buffer on a socket, as one write where the system takes it at once. A peer that has gone never
/// raises the broken-pipe signal. False when not all could be sent (errno set).
bool write_all(int fd, std::span<const std::uint8_t> buffer);

}  // namespace ifwatch
