#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ifwatch::cases {

// A case file is the readable form of what one traced interface shows:
//
//     # Comments run to the end of the line.
//     channel 0                      # channel type of the interface
//     interface 1000                 # index it is served under, optional
//     name Office line               # optional
//     options -2 -3 -h               # options for the viewer; the line may be repeated
//     record R 1000                  # R received or X sent by the router, time stamp in ms
//       02 01 7F "text" 00*16        # indented: the octets
//     record X 1250 sequence=7 flags=0x81 info=0x00002300 original=64

inline constexpr std::size_t RECORD_HEADER_LENGTH = 22;
inline constexpr std::size_t MAX_RECORD_DATA = 0xFFFF - RECORD_HEADER_LENGTH;  // the record length is a 16-bit field

// Of all records of a case together: a line of a few characters may stand for thousands of octets.
inline constexpr std::size_t MAX_CASE_DATA = std::size_t{64} << 20;

/// One frame as the router traced it.
struct case_record {
    std::uint32_t timestamp_ms = 0;
    std::uint32_t flags = 0;
    std::uint32_t info = 0;
    std::uint32_t sequence = 0;
    std::uint16_t original_length = 0;
    std::vector<std::uint8_t> data;

    bool operator==(const case_record&) const = default;
};

/// One interface and the frames that cross it.
struct trace_case {
    std::string path;
    int channel_line = 0;  // where it says so; 0: nowhere
    int interface_line = 0;
    std::string name;
    int channel_type = 0;
    std::optional<std::uint32_t> interface_index;
    std::vector<std::string> options;  // the text of each options line
    std::vector<case_record> records;
};

/// Parses the text of a case file. On a mistake false, with the number of its line and what is wrong there in `error`:
/// "12: unknown word 'recrod'".
bool parse_case(std::string_view text, trace_case& parsed, std::string& error);

/// Reads and parses a case file. The error names the file: "isdn.case:12: unknown word 'recrod'".
bool read_case_file(const std::string& path, trace_case& parsed, std::string& error);

}  // namespace ifwatch::cases
