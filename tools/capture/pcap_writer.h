#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace ifwatch::capture {

/// One packet of a classic PCAP file, which pcap_reader.h describes.
struct pcap_packet {
    std::int64_t time_ns = 0;
    std::uint32_t original_length = 0;
    std::span<const std::uint8_t> data;
};

/// Append a file header, and a packet with its header: little-endian, times in microseconds.
void append_pcap_header(std::vector<std::uint8_t>& file, std::uint32_t link_type);
void append_pcap_packet(std::vector<std::uint8_t>& file, const pcap_packet& packet);

}  // namespace ifwatch::capture
