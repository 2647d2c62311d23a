#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "capture/capture_reader.h"
#include "support/octet_file.h"
#include "support/ordered_octets.h"

namespace ifwatch::test {

/// A packet with octets and a comment of its own, and the interface that it came from.
struct kept_packet : capture::captured_packet {
    std::vector<std::uint8_t> octets;
    std::string text;
    capture::capture_interface from;
};

/// All that a capture gives.
struct captured_packets {
    std::vector<kept_packet> packets;
    capture::packet_read end = capture::packet_read::PACKET;
    std::string error;

    explicit captured_packets(int fd) {
        capture::byte_stream stream(fd);
        capture::capture_reader reader(stream);
        kept_packet packet;
        while ((end = reader.next(packet)) == capture::packet_read::PACKET) {
            packet.octets.assign(packet.data.begin(), packet.data.end());
            packet.text = packet.comment;
            packet.from = reader.interface_of(packet);
            packets.push_back(packet);
        }
        error = reader.error();
    }
    explicit captured_packets(std::span<const std::uint8_t> file) : captured_packets(octet_file(file).fd()) {}
};

/// What a capture without a fault gives.
template <class File>
captured_packets parsed(const ordered_octets<File>& file) {
    captured_packets result(file.octets());
    EXPECT_EQ(result.end, capture::packet_read::END) << result.error;
    return result;
}

/// What is wrong with a damaged one.
inline std::string error_of(std::span<const std::uint8_t> file) {
    const captured_packets result(file);
    EXPECT_EQ(result.end, capture::packet_read::DAMAGED);
    return result.error;
}

}  // namespace ifwatch::test
