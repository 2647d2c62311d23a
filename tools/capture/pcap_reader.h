#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "capture/packet_format.h"

namespace ifwatch::capture {

// The classic libpcap file format, version 2.x, as pcap-savefile(5) has it:
//
//     file:    magic (4), major version (2), minor version (2), time zone (4), accuracy (4), capture length (4),
//              link type (4): bits 15-0; with bit 26 set bits 31-28 count the 16-bit words of check sequence that end
//              each packet
//     packet:  seconds (4), micro- or nanoseconds (4), captured length (4), length on the line (4), the octets
//
// The magic tells the byte order of all of it, and whether times are in nanoseconds.

/// Whether a stream begins as such a file does.
[[nodiscard]] bool is_pcap(byte_stream& stream);

class pcap_format : public packet_format {
public:
    using packet_format::packet_format;

    packet_read next(captured_packet& packet) override;
    [[nodiscard]] const capture_interface& interface_of(const captured_packet& packet) const override;

private:
    bool read_file_header();
    packet_read read_packet(captured_packet& packet);
    packet_read fill(captured_packet& packet, std::uint32_t captured, std::uint32_t original);

    [[nodiscard]] std::uint32_t word(const std::uint8_t* at) const;
    [[nodiscard]] std::uint16_t half(const std::uint8_t* at) const;

    capture_interface interface_;
    bool begun_ = false;
    bool big_endian_ = false;
    std::int64_t time_unit_ns_ = 1;
    std::uint32_t check_sequence_ = 0;  // octets at the end of each packet
    std::uint64_t number_ = 0;
    std::uint64_t behind_ = 0;         // octets of the packet that was read last, still in front
    std::vector<std::uint8_t> aside_;  // the first octets of a packet that does not fit the stream's buffer
};

}  // namespace ifwatch::capture
