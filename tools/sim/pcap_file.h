#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ifwatch::sim {

// The classic libpcap file format, version 2.x, as pcap-savefile(5) has it:
//
//     file:    magic (4), major version (2), minor version (2), time zone (4), accuracy (4), capture length (4),
//              link type (4): bits 15-0; with bit 26 set bits 31-28 count the 16-bit words of check sequence that end
//              each packet
//     packet:  seconds (4), micro- or nanoseconds (4), captured length (4), length on the line (4), the octets
//
// The magic tells the byte order of all of it, and whether times are in nanoseconds.

/// One packet of a file. The octets are those of the file that was parsed.
struct pcap_packet {
    std::size_t offset = 0;  // of its header in the file
    std::int64_t time_ns = 0;
    std::uint32_t original_length = 0;
    std::span<const std::uint8_t> data;  // without a check sequence
};

struct pcap_file {
    std::uint32_t link_type = 0;
    std::vector<pcap_packet> packets;
};

/// Takes a PCAP file apart: either byte order, times in micro- or nanoseconds. False with where and what is wrong in
/// `error`: "packet 2 at offset 100: 60 octets announced, 20 held".
bool parse_pcap(std::span<const std::uint8_t> file, pcap_file& parsed, std::string& error);

/// "packet 2 at offset 100", for a message about a packet; `index` counts from 0.
[[nodiscard]] std::string packet_place(const pcap_file& file, std::size_t index);

/// Append a file header, and a packet with its header: little-endian, times in microseconds.
void append_pcap_header(std::vector<std::uint8_t>& file, std::uint32_t link_type);
void append_pcap_packet(std::vector<std::uint8_t>& file, const pcap_packet& packet);

}  // namespace ifwatch::sim
