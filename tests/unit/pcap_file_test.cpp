#include "sim/pcap_file.h"

#include <gtest/gtest.h>

#include <array>

#include "support/pcap_octets.h"

namespace ifwatch::sim {
namespace {

using test::pcap_octets;

constexpr std::array<std::uint8_t, 3> THREE = {1, 2, 3};
constexpr std::array<std::uint8_t, 6> SIX = {1, 2, 3, 4, 5, 6};
constexpr std::uint32_t NANOSECONDS = 0xA1B23C4D;

pcap_file parsed(const pcap_octets& file) {
    pcap_file result;
    std::string error;
    EXPECT_TRUE(parse_pcap(file.octets(), result, error)) << error;
    return result;
}

std::string error_of(std::span<const std::uint8_t> file) {
    pcap_file result;
    std::string error;
    EXPECT_FALSE(parse_pcap(file, result, error));
    return error;
}

TEST(parse_pcap, reads_both_byte_orders) {
    for (const bool big_endian : {false, true}) {
        pcap_octets file(big_endian);
        file.header(177).packet(1, 500000, SIX, 64).packet(2, 0, THREE);
        const pcap_file result = parsed(file);
        EXPECT_EQ(result.link_type, 177U);
        ASSERT_EQ(result.packets.size(), 2U);
        EXPECT_EQ(result.packets[0].offset, 24U);
        EXPECT_EQ(result.packets[0].time_ns, 1'500'000'000);
        EXPECT_EQ(result.packets[0].original_length, 64U);
        EXPECT_TRUE(std::ranges::equal(result.packets[0].data, SIX));
        EXPECT_EQ(result.packets[1].offset, 46U);
        EXPECT_EQ(result.packets[1].time_ns, 2'000'000'000);
        EXPECT_EQ(result.packets[1].original_length, 3U);
        EXPECT_TRUE(std::ranges::equal(result.packets[1].data, THREE));
    }
}

TEST(parse_pcap, the_magic_tells_the_unit_of_time) {
    for (const bool big_endian : {false, true}) {
        pcap_octets file(big_endian);
        file.header(1, NANOSECONDS).packet(3, 999999999, THREE);
        EXPECT_EQ(parsed(file).packets.at(0).time_ns, 3'999'999'999);
    }
}

TEST(parse_pcap, seconds_are_unsigned) {
    EXPECT_EQ(parsed(pcap_octets().header(1).packet(0xFFFFFFFF, 1, THREE)).packets.at(0).time_ns,
              4'294'967'295'000'001'000);
}

TEST(parse_pcap, a_file_may_have_no_packets) { EXPECT_TRUE(parsed(pcap_octets().header(1)).packets.empty()); }

TEST(parse_pcap, a_packet_may_have_no_octets) {
    const pcap_file result = parsed(pcap_octets().header(1).packet(0, 0, {}, 60));
    EXPECT_TRUE(result.packets.at(0).data.empty());
    EXPECT_EQ(result.packets.at(0).original_length, 60U);
}

TEST(parse_pcap, the_line_never_had_less_than_was_captured) {
    EXPECT_EQ(parsed(pcap_octets().header(1).packet(0, 0, SIX, 2)).packets.at(0).original_length, 6U);
}

TEST(parse_pcap, check_sequences_are_taken_off) {
    constexpr std::uint32_t four_octets = 0x24000000;  // two words, and the bit that says so
    const pcap_file result = parsed(pcap_octets()
                                        .header(four_octets | 1)
                                        .packet(0, 0, SIX)
                                        .packet(0, 0, THREE, 8)
                                        .packet(0, 0, SIX, 8)
                                        .packet(0, 0, THREE));
    EXPECT_EQ(result.link_type, 1U);
    ASSERT_EQ(result.packets.size(), 4U);
    EXPECT_EQ(result.packets[0].original_length, 2U);
    EXPECT_EQ(result.packets[0].data.size(), 2U);
    EXPECT_EQ(result.packets[1].original_length, 4U);
    EXPECT_EQ(result.packets[1].data.size(), 3U) << "cut before the check sequence";
    EXPECT_EQ(result.packets[2].data.size(), 4U) << "cut inside the check sequence";
    EXPECT_EQ(result.packets[3].original_length, 0U) << "shorter than a check sequence";
    EXPECT_TRUE(result.packets[3].data.empty());
}

TEST(parse_pcap, says_what_is_no_pcap_file) {
    EXPECT_EQ(error_of({}), "offset 0: this is no PCAP file");
    EXPECT_EQ(error_of(THREE), "offset 0: this is no PCAP file");
    EXPECT_EQ(error_of(SIX), "offset 0: this is no PCAP file");
    EXPECT_EQ(error_of(pcap_octets().word(0x0A0D0D0A).word(28).octets()),
              "offset 0: this is pcapng, convert it to PCAP first: tcpdump -r FILE -w NEW-FILE");
    EXPECT_EQ(error_of(pcap_octets(true).word(0xA1B2C3D4).half(3).half(1).word(0).word(0).word(0).word(1).octets()),
              "offset 4: version 3.1 of the format is not known");
}

TEST(parse_pcap, says_where_a_file_is_cut_off) {
    const std::vector<std::uint8_t> whole = pcap_octets().header(1).packet(0, 0, THREE).packet(0, 0, SIX).octets();
    const auto cut = [&whole](std::size_t length) { return error_of(std::span(whole).first(length)); };
    EXPECT_EQ(cut(23), "offset 0: the file header is cut off: 23 of 24 octets held");
    EXPECT_EQ(cut(25), "packet 1 at offset 24: its header is cut off: 1 of 16 octets held");
    EXPECT_EQ(cut(42), "packet 1 at offset 24: 3 octets announced, 2 held");
    EXPECT_EQ(cut(58), "packet 2 at offset 43: its header is cut off: 15 of 16 octets held");
    EXPECT_EQ(cut(64), "packet 2 at offset 43: 6 octets announced, 5 held");
}

TEST(parse_pcap, a_length_beyond_all_memory_is_only_a_length) {
    EXPECT_EQ(error_of(pcap_octets().header(1).word(0).word(0).word(0xFFFFFFFF).word(0xFFFFFFFF).data(THREE).octets()),
              "packet 1 at offset 24: 4294967295 octets announced, 3 held");
}

TEST(append_pcap, writes_little_endian_with_microseconds) {
    std::vector<std::uint8_t> file;
    append_pcap_header(file, 204);
    append_pcap_packet(file, {.offset = 0, .time_ns = 61'234'567'899, .original_length = 60, .data = SIX});
    pcap_octets wanted;
    wanted.word(0xA1B2C3D4).half(2).half(4).word(0).word(0).word(65535).word(204).packet(61, 234567, SIX, 60);
    EXPECT_EQ(file, wanted.octets());
}

}  // namespace
}  // namespace ifwatch::sim
