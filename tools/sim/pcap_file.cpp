#include "sim/pcap_file.h"

#include <algorithm>

#include "trace/element.h"

namespace ifwatch::sim {

namespace {

constexpr std::size_t FILE_HEADER = 24;
constexpr std::size_t PACKET_HEADER = 16;
constexpr std::size_t MAGIC_LENGTH = 4;

constexpr std::uint32_t MAGIC_MICROSECONDS = 0xA1B2C3D4;
constexpr std::uint32_t MAGIC_NANOSECONDS = 0xA1B23C4D;
constexpr std::uint32_t MAGIC_PCAPNG = 0x0A0D0D0A;
constexpr std::uint32_t CAPTURE_LENGTH = 65535;
constexpr int VERSION_MAJOR = 2;
constexpr int VERSION_MINOR = 4;

constexpr std::uint32_t LINK_TYPE_BITS = 0x0000FFFF;
constexpr std::uint32_t CHECK_SEQUENCE_GIVEN = 0x04000000;
constexpr int CHECK_SEQUENCE_SHIFT = 28;
constexpr std::uint32_t CHECK_SEQUENCE_WORD = 2;  // octets

constexpr std::int64_t NS_PER_S = 1'000'000'000;
constexpr std::int64_t NS_PER_US = 1'000;

/// What the headers of one file tell about the rest of it.
struct pcap_reader {
    std::span<const std::uint8_t> file;
    bool big_endian = false;
    std::int64_t time_unit_ns = NS_PER_US;
    std::uint32_t check_sequence = 0;  // octets at the end of each packet

    [[nodiscard]] std::uint32_t word(std::size_t at) const {
        return big_endian ? load_be32(&file[at]) : load_le32(&file[at]);
    }
    [[nodiscard]] std::uint16_t half(std::size_t at) const {
        return big_endian ? load_be16(&file[at]) : swap16(load_be16(&file[at]));
    }
};

/// "cut off: 3 of 16 octets held".
std::string cut_off(std::size_t whole, std::size_t held) {
    return "cut off: " + std::to_string(held) + " of " + std::to_string(whole) + " octets held";
}

bool read_magic(pcap_reader& reader, std::string& error) {
    const bool whole = reader.file.size() >= MAGIC_LENGTH;
    for (const bool big_endian : {false, true}) {
        reader.big_endian = big_endian;
        const std::uint32_t magic = whole ? reader.word(0) : 0;
        reader.time_unit_ns = magic == MAGIC_NANOSECONDS ? 1 : NS_PER_US;
        if (magic == MAGIC_MICROSECONDS || magic == MAGIC_NANOSECONDS) {
            return true;
        }
        if (magic == MAGIC_PCAPNG) {
            error = "offset 0: this is pcapng, convert it to PCAP first: tcpdump -r FILE -w NEW-FILE";
            return false;
        }
    }
    error = "offset 0: this is no PCAP file";
    return false;
}

bool read_file_header(pcap_reader& reader, pcap_file& parsed, std::string& error) {
    if (!read_magic(reader, error)) {
        return false;
    }
    if (reader.file.size() < FILE_HEADER) {
        error = "offset 0: the file header is " + cut_off(FILE_HEADER, reader.file.size());
        return false;
    }
    if (reader.half(4) != VERSION_MAJOR) {
        error = "offset 4: version " + std::to_string(reader.half(4)) + "." + std::to_string(reader.half(6)) +
                " of the format is not known";
        return false;
    }
    const std::uint32_t link = reader.word(20);
    parsed.link_type = link & LINK_TYPE_BITS;
    if ((link & CHECK_SEQUENCE_GIVEN) != 0) {
        reader.check_sequence = CHECK_SEQUENCE_WORD * (link >> CHECK_SEQUENCE_SHIFT);
    }
    return true;
}

/// Reads the packet at `at`, whose header is there. False when its octets are not; `held` of them are.
bool read_packet(const pcap_reader& reader, std::size_t at, pcap_packet& packet) {
    const std::uint32_t captured = reader.word(at + 8);
    const std::uint32_t original = std::max(reader.word(at + 12), captured);
    const auto rest = reader.file.subspan(at + PACKET_HEADER);
    packet.offset = at;
    packet.time_ns = std::int64_t{reader.word(at)} * NS_PER_S + std::int64_t{reader.word(at + 4)} * reader.time_unit_ns;
    packet.original_length = original - std::min(original, reader.check_sequence);
    if (captured > rest.size()) {
        return false;
    }
    packet.data = rest.first(std::min(captured, packet.original_length));
    return true;
}

void append_le16(std::vector<std::uint8_t>& file, std::uint16_t value) {
    file.push_back(static_cast<std::uint8_t>(value));
    file.push_back(static_cast<std::uint8_t>(value >> 8));
}

void append_le32(std::vector<std::uint8_t>& file, std::uint32_t value) {
    append_le16(file, static_cast<std::uint16_t>(value));
    append_le16(file, static_cast<std::uint16_t>(value >> 16));
}

}  // namespace

bool parse_pcap(std::span<const std::uint8_t> file, pcap_file& parsed, std::string& error) {
    pcap_reader reader{file};
    if (!read_file_header(reader, parsed, error)) {
        return false;
    }
    for (std::size_t at = FILE_HEADER; at < file.size();) {
        const std::size_t held = file.size() - at;
        pcap_packet& packet = parsed.packets.emplace_back();
        packet.offset = at;
        if (held < PACKET_HEADER) {
            error = packet_place(parsed, parsed.packets.size() - 1) + ": its header is " + cut_off(PACKET_HEADER, held);
            return false;
        }
        const std::uint32_t captured = reader.word(at + 8);
        if (!read_packet(reader, at, packet)) {
            error = packet_place(parsed, parsed.packets.size() - 1) + ": " + std::to_string(captured) +
                    " octets announced, " + std::to_string(held - PACKET_HEADER) + " held";
            return false;
        }
        at += PACKET_HEADER + captured;
    }
    return true;
}

std::string packet_place(const pcap_file& file, std::size_t index) {
    return "packet " + std::to_string(index + 1) + " at offset " + std::to_string(file.packets[index].offset);
}

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

}  // namespace ifwatch::sim
