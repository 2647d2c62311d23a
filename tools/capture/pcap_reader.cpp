#include "capture/pcap_reader.h"

#include <algorithm>

#include "base/byte_order.h"

namespace ifwatch::capture {

namespace {

constexpr std::size_t FILE_HEADER = 24;
constexpr std::size_t PACKET_HEADER = 16;
constexpr std::size_t MAGIC_LENGTH = 4;

constexpr std::uint32_t MAGIC_MICROSECONDS = 0xA1B2C3D4;
constexpr std::uint32_t MAGIC_NANOSECONDS = 0xA1B23C4D;
constexpr int VERSION_MAJOR = 2;

constexpr std::uint32_t LINK_TYPE_BITS = 0x0000FFFF;
constexpr std::uint32_t CHECK_SEQUENCE_GIVEN = 0x04000000;
constexpr int CHECK_SEQUENCE_SHIFT = 28;
constexpr std::uint32_t CHECK_SEQUENCE_WORD = 2;  // octets

constexpr std::int64_t NS_PER_S = 1'000'000'000;
constexpr std::int64_t NS_PER_US = 1'000;

bool is_magic(std::uint32_t word) { return word == MAGIC_MICROSECONDS || word == MAGIC_NANOSECONDS; }

}  // namespace

bool is_pcap(byte_stream& stream) {
    const auto magic = stream.hold(MAGIC_LENGTH);
    return magic.size() == MAGIC_LENGTH && (is_magic(load_be32(magic.data())) || is_magic(load_le32(magic.data())));
}

std::uint32_t pcap_format::word(const std::uint8_t* at) const { return big_endian_ ? load_be32(at) : load_le32(at); }
std::uint16_t pcap_format::half(const std::uint8_t* at) const {
    return big_endian_ ? load_be16(at) : swap16(load_be16(at));
}

const capture_interface& pcap_format::interface_of(const captured_packet& /*packet*/) const { return interface_; }

bool pcap_format::read_file_header() {
    const auto header = stream().hold(FILE_HEADER);
    big_endian_ = is_magic(load_be32(header.data()));
    time_unit_ns_ = word(header.data()) == MAGIC_NANOSECONDS ? 1 : NS_PER_US;
    if (header.size() < FILE_HEADER) {
        damaged("offset 0", "the file header is " + cut_off(FILE_HEADER, header.size()));
        return false;
    }
    if (half(&header[4]) != VERSION_MAJOR) {
        damaged("offset 4", "version " + std::to_string(half(&header[4])) + "." + std::to_string(half(&header[6])) +
                                " of the format is not known");
        return false;
    }
    const std::uint32_t link = word(&header[20]);
    interface_.link_type = link & LINK_TYPE_BITS;
    if ((link & CHECK_SEQUENCE_GIVEN) != 0) {
        check_sequence_ = CHECK_SEQUENCE_WORD * (link >> CHECK_SEQUENCE_SHIFT);
    }
    behind_ = FILE_HEADER;
    return true;
}

packet_read pcap_format::next(captured_packet& packet) {
    if (!begun_) {
        begun_ = true;
        if (!read_file_header()) {
            return packet_read::DAMAGED;
        }
    }
    stream().skip(behind_);
    behind_ = 0;
    return read_packet(packet);
}

packet_read pcap_format::read_packet(captured_packet& packet) {
    const std::uint64_t offset = stream().offset();
    const auto header = stream().hold(PACKET_HEADER);
    if (header.empty() && stream().error() == 0) {
        return packet_read::END;
    }
    ++number_;
    if (header.size() < PACKET_HEADER) {
        return damaged(packet_place(number_, offset), "its header is " + cut_off(PACKET_HEADER, header.size()));
    }
    packet = {.number = number_,
              .offset = offset,
              .time_ns = std::int64_t{word(header.data())} * NS_PER_S + std::int64_t{word(&header[4])} * time_unit_ns_};
    return fill(packet, word(&header[8]), word(&header[12]));
}

/// Gets the octets of a packet whose header is held.
packet_read pcap_format::fill(captured_packet& packet, std::uint32_t captured, std::uint32_t original) {
    const std::uint64_t whole = PACKET_HEADER + std::uint64_t{captured};
    std::span<std::uint8_t> octets;
    std::uint64_t held = 0;
    if (whole <= byte_stream::CAPACITY) {
        octets = stream().hold(static_cast<std::size_t>(whole)).subspan(PACKET_HEADER);
        held = octets.size();
        behind_ = whole;
    } else {
        octets = stream().hold(PACKET_HEADER + captured_packet::MAX_KEPT).subspan(PACKET_HEADER);
        aside_.assign(octets.begin(), octets.end());
        octets = aside_;
        held = stream().skip(whole) - PACKET_HEADER;
    }
    if (held < captured) {
        return damaged(packet_place(packet.number, packet.offset), announced_and_held(captured, held));
    }
    original = std::max(original, captured);
    packet.original_length = original - std::min(original, check_sequence_);
    packet.captured_length = std::min(captured, packet.original_length);
    packet.data =
        octets.first(std::min({octets.size(), std::size_t{packet.captured_length}, captured_packet::MAX_KEPT}));
    return packet_read::PACKET;
}

}  // namespace ifwatch::capture
