#include "capture/pcap_reader.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "capture/pcap_writer.h"
#include "support/captured_packets.h"
#include "support/pcap_octets.h"

namespace ifwatch::capture {
namespace {

using test::captured_packets;
using test::error_of;
using test::parsed;
using test::pcap_octets;

constexpr std::array<std::uint8_t, 3> THREE = {1, 2, 3};
constexpr std::array<std::uint8_t, 6> SIX = {1, 2, 3, 4, 5, 6};
constexpr std::uint32_t NANOSECONDS = 0xA1B23C4D;

TEST(pcap_reader, reads_both_byte_orders) {
    for (const bool big_endian : {false, true}) {
        pcap_octets file(big_endian);
        file.header(177).packet(1, 500000, SIX, 64).packet(2, 0, THREE);
        const captured_packets result = parsed(file);
        ASSERT_EQ(result.packets.size(), 2U);
        EXPECT_EQ(result.packets[0].from.link_type, 177U);
        EXPECT_EQ(result.packets[0].number, 1U);
        EXPECT_EQ(result.packets[1].number, 2U);
        EXPECT_EQ(result.packets[0].offset, 24U);
        EXPECT_EQ(result.packets[0].time_ns, 1'500'000'000);
        EXPECT_EQ(result.packets[0].original_length, 64U);
        EXPECT_TRUE(std::ranges::equal(result.packets[0].octets, SIX));
        EXPECT_EQ(result.packets[1].offset, 46U);
        EXPECT_EQ(result.packets[1].time_ns, 2'000'000'000);
        EXPECT_EQ(result.packets[1].original_length, 3U);
        EXPECT_TRUE(std::ranges::equal(result.packets[1].octets, THREE));
    }
}

TEST(pcap_reader, the_magic_tells_the_unit_of_time) {
    for (const bool big_endian : {false, true}) {
        pcap_octets file(big_endian);
        file.header(1, NANOSECONDS).packet(3, 999999999, THREE);
        EXPECT_EQ(parsed(file).packets.at(0).time_ns, 3'999'999'999);
    }
}

TEST(pcap_reader, seconds_are_unsigned) {
    EXPECT_EQ(parsed(pcap_octets().header(1).packet(0xFFFFFFFF, 1, THREE)).packets.at(0).time_ns,
              4'294'967'295'000'001'000);
}

TEST(pcap_reader, a_file_may_have_no_packets) { EXPECT_TRUE(parsed(pcap_octets().header(1)).packets.empty()); }

TEST(pcap_reader, a_packet_may_have_no_octets) {
    const captured_packets result = parsed(pcap_octets().header(1).packet(0, 0, {}, 60));
    EXPECT_TRUE(result.packets.at(0).octets.empty());
    EXPECT_EQ(result.packets.at(0).original_length, 60U);
}

TEST(pcap_reader, the_line_never_had_less_than_was_captured) {
    EXPECT_EQ(parsed(pcap_octets().header(1).packet(0, 0, SIX, 2)).packets.at(0).original_length, 6U);
}

TEST(pcap_reader, check_sequences_are_taken_off) {
    constexpr std::uint32_t four_octets = 0x24000000;  // two words, and the bit that says so
    const captured_packets result = parsed(pcap_octets()
                                               .header(four_octets | 1)
                                               .packet(0, 0, SIX)
                                               .packet(0, 0, THREE, 8)
                                               .packet(0, 0, SIX, 8)
                                               .packet(0, 0, THREE));
    ASSERT_EQ(result.packets.size(), 4U);
    EXPECT_EQ(result.packets[0].from.link_type, 1U);
    EXPECT_EQ(result.packets[0].original_length, 2U);
    EXPECT_EQ(result.packets[0].octets.size(), 2U);
    EXPECT_EQ(result.packets[1].original_length, 4U);
    EXPECT_EQ(result.packets[1].octets.size(), 3U) << "cut before the check sequence";
    EXPECT_EQ(result.packets[2].octets.size(), 4U) << "cut inside the check sequence";
    EXPECT_EQ(result.packets[3].original_length, 0U) << "shorter than a check sequence";
    EXPECT_TRUE(result.packets[3].octets.empty());
}

TEST(pcap_reader, says_what_is_no_pcap_file) {
    EXPECT_EQ(error_of({}), "offset 0: the file is empty");
    EXPECT_EQ(error_of(THREE), "offset 0: the number that tells its format is cut off: 3 of 4 octets held");
    EXPECT_EQ(error_of(SIX), "offset 0: this is no PCAP or pcapng file");
    EXPECT_EQ(error_of(pcap_octets(true).word(0xA1B2C3D4).half(3).half(1).word(0).word(0).word(0).word(1).octets()),
              "offset 4: version 3.1 of the format is not known");
}

TEST(pcap_reader, says_where_a_file_is_cut_off) {
    const std::vector<std::uint8_t> whole = pcap_octets().header(1).packet(0, 0, THREE).packet(0, 0, SIX).octets();
    const auto cut = [&whole](std::size_t length) { return error_of(std::span(whole).first(length)); };
    EXPECT_EQ(cut(23), "offset 0: the file header is cut off: 23 of 24 octets held");
    EXPECT_EQ(cut(25), "packet 1 at offset 24: its header is cut off: 1 of 16 octets held");
    EXPECT_EQ(cut(42), "packet 1 at offset 24: 3 octets announced, 2 held");
    EXPECT_EQ(cut(58), "packet 2 at offset 43: its header is cut off: 15 of 16 octets held");
    EXPECT_EQ(cut(64), "packet 2 at offset 43: 6 octets announced, 5 held");
}

TEST(pcap_reader, a_length_beyond_all_memory_is_only_a_length) {
    EXPECT_EQ(error_of(pcap_octets().header(1).word(0).word(0).word(0xFFFFFFFF).word(0xFFFFFFFF).data(THREE).octets()),
              "packet 1 at offset 24: 4294967295 octets announced, 3 held");
}

TEST(pcap_reader, every_cut_gives_the_packets_before_it_and_one_reason) {
    const std::vector<std::uint8_t> whole = pcap_octets().header(1).packet(1, 0, THREE).packet(2, 0, SIX).octets();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const captured_packets got{std::span<const std::uint8_t>(whole).first(length)};
        EXPECT_EQ(got.packets.size(), length < 43 ? 0U : 1U) << length;
        const bool between = length == 24 || length == 43;
        EXPECT_EQ(got.end, between ? packet_read::END : packet_read::DAMAGED) << length;
        EXPECT_EQ(got.error.empty(), between) << got.error;
        EXPECT_EQ(got.error.find('\n'), std::string::npos);
    }
}

TEST(pcap_reader, a_packet_longer_than_its_buffer_is_kept_in_part) {
    std::vector<std::uint8_t> large(byte_stream::CAPACITY + 1000);
    for (std::size_t i = 0; i < large.size(); ++i) {
        large[i] = static_cast<std::uint8_t>(i * 7);
    }
    const std::span<const std::uint8_t> all = large;
    for (const std::size_t length : {byte_stream::CAPACITY - 16, byte_stream::CAPACITY - 15, all.size()}) {
        const captured_packets got =
            parsed(pcap_octets().header(1).packet(1, 0, all.first(length)).packet(2, 0, THREE));
        ASSERT_EQ(got.packets.size(), 2U);
        EXPECT_TRUE(std::ranges::equal(got.packets[0].octets, all.first(captured_packet::MAX_KEPT))) << length;
        EXPECT_EQ(got.packets[0].captured_length, length);
        EXPECT_EQ(got.packets[0].original_length, length);
        EXPECT_TRUE(std::ranges::equal(got.packets[1].octets, THREE));
    }
    const std::vector<std::uint8_t> whole = pcap_octets().header(1).packet(1, 0, all).octets();
    EXPECT_EQ(error_of(std::span(whole).first(all.size())),
              "packet 1 at offset 24: 263144 octets announced, 263104 held");
}

TEST(append_pcap, writes_little_endian_with_microseconds) {
    std::vector<std::uint8_t> file;
    append_pcap_header(file, 204);
    append_pcap_packet(file, {.time_ns = 61'234'567'899, .original_length = 60, .data = SIX});
    pcap_octets wanted;
    wanted.word(0xA1B2C3D4).half(2).half(4).word(0).word(0).word(65535).word(204).packet(61, 234567, SIX, 60);
    EXPECT_EQ(file, wanted.octets());
}

}  // namespace
}  // namespace ifwatch::capture
