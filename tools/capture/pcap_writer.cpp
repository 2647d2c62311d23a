#include "capture/pcap_writer.h"

namespace ifwatch::capture {

namespace {

constexpr std::uint32_t MAGIC_MICROSECONDS = 0xA1B2C3D4;
constexpr std::uint32_t CAPTURE_LENGTH = 65535;
constexpr std::uint16_t VERSION_MAJOR = 2;
constexpr std::uint16_t VERSION_MINOR = 4;
constexpr std::int64_t NS_PER_S = 1'000'000'000;
constexpr std::int64_t NS_PER_US = 1'000;

void append_le16(std::vector<std::uint8_t>& file, std::uint16_t value) {
    file.push_back(static_cast<std::uint8_t>(value));
    file.push_back(static_cast<std::uint8_t>(value >> 8));
}

void append_le32(std::vector<std::uint8_t>& file, std::uint32_t value) {
    append_le16(file, static_cast<std::uint16_t>(value));
    append_le16(file, static_cast<std::uint16_t>(value >> 16));
}

}  // namespace

void append_pcap_header(std::vector<std::uint8_t>& file, std::uint32_t link_type) {
    append_le32(file, MAGIC_MICROSECONDS);
    append_le16(file, VERSION_MAJOR);
    append_le16(file, VERSION_MINOR);
    append_le32(file, 0);
    append_le32(file, 0);
    append_le32(file, CAPTURE_LENGTH);
    append_le32(file, link_type);
}

void append_pcap_packet(std::vector<std::uint8_t>& file, const pcap_packet& packet) {
    append_le32(file, static_cast<std::uint32_t>(packet.time_ns / NS_PER_S));
    append_le32(file, static_cast<std::uint32_t>(packet.time_ns % NS_PER_S / NS_PER_US));
    append_le32(file, static_cast<std::uint32_t>(packet.data.size()));
    append_le32(file, packet.original_length);
    file.insert(file.end(), packet.data.begin(), packet.data.end());
}

}  // namespace ifwatch::capture
