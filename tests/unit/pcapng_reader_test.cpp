// Blocks as the pcapng draft has them: sections 3.1 (block structure), 3.5 (options), 4.1 to 4.4 and appendix A (the
// obsolete packet block).

#include "capture/pcapng_reader.h"

#include <gtest/gtest.h>

#include <array>

#include "support/captured_packets.h"
#include "support/pcapng_octets.h"

namespace ifwatch::capture {
namespace {

using test::captured_packets;
using test::error_of;
using test::parsed;
using test::pcapng_octets;

constexpr std::array<std::uint8_t, 3> THREE = {1, 2, 3};
constexpr std::array<std::uint8_t, 6> SIX = {1, 2, 3, 4, 5, 6};

TEST(pcapng_reader, reads_both_byte_orders) {
    for (const bool big_endian : {false, true}) {
        pcapng_octets file(big_endian);
        file.section().interface(203).interface(1).packet(1, 0x0000000100000002, SIX).packet(0, 5, THREE);
        const captured_packets got = parsed(file);
        ASSERT_EQ(got.packets.size(), 2U);
        EXPECT_EQ(got.packets[0].number, 1U);
        EXPECT_EQ(got.packets[0].offset, 28U + 20 + 20);
        EXPECT_EQ(got.packets[0].interface_id, 1U);
        EXPECT_EQ(got.packets[0].from.link_type, 1U);
        EXPECT_EQ(got.packets[0].time_ns, 4'294'967'298'000) << "microseconds, when nothing is told";
        EXPECT_EQ(got.packets[0].original_length, 6U);
        EXPECT_TRUE(std::ranges::equal(got.packets[0].octets, SIX));
        EXPECT_EQ(got.packets[1].from.link_type, 203U);
        EXPECT_TRUE(std::ranges::equal(got.packets[1].octets, THREE));
    }
}

TEST(pcapng_reader, takes_the_options_of_interfaces_and_packets) {
    for (const bool big_endian : {false, true}) {
        pcapng_octets file(big_endian);
        pcapng_octets described = file.empty();
        described.half(1).half(0).word(0).option(1, "the comment").option(1, "another").option(2, "eth0");
        described.option(3, std::string(300, 'd')).option(200, "unknown").end_options();
        pcapng_octets packet = file.packet_body(0, 0, THREE);
        packet.option(1, "why?").option(1, "why not?").word_option(2, 0x01000002).long_option(4, 7);
        packet.long_option(5, 0x0123456789ABCDEF).end_options().option(1, "behind the end");
        file.section().block(1, described).block(6, packet).packet(0, 0, THREE);
        const captured_packets got = parsed(file);
        ASSERT_EQ(got.packets.size(), 2U);
        EXPECT_EQ(got.packets[0].from.name, "eth0");
        EXPECT_EQ(got.packets[0].from.comment, "the comment");
        EXPECT_EQ(got.packets[0].from.description, std::string(255, 'd'));
        EXPECT_EQ(got.packets[0].text, "why?");
        EXPECT_EQ(got.packets[0].flags, 0x01000002U);
        EXPECT_EQ(got.packets[0].lost, 7U);
        EXPECT_EQ(got.packets[0].id, 0x0123456789ABCDEFU);
        EXPECT_EQ(got.packets[1].text, "");
        EXPECT_EQ(got.packets[1].flags, 0U);
        EXPECT_EQ(got.packets[1].lost, 0U);
        EXPECT_FALSE(got.packets[1].id);
    }
}

TEST(pcapng_reader, an_option_of_the_wrong_length_tells_nothing) {
    pcapng_octets file;
    pcapng_octets packet = file.packet_body(0, 0, THREE);
    packet.option(2, "\x01").option(4, "\x01\x02\x03\x04").option(5, "");
    file.section().interface(1).block(6, packet);
    const captured_packets got = parsed(file);
    ASSERT_EQ(got.packets.size(), 1U);
    EXPECT_EQ(got.packets[0].flags, 0U);
    EXPECT_EQ(got.packets[0].lost, 0U);
    EXPECT_FALSE(got.packets[0].id);
}

TEST(pcapng_reader, each_section_has_its_byte_order_and_its_interfaces) {
    pcapng_octets first(false);
    pcapng_octets second(true);
    first.section().interface(1).packet(0, 1, THREE);
    second.section().interface(9).packet(0, 2, SIX);
    std::vector<std::uint8_t> both = first.octets();
    both.insert(both.end(), second.octets().begin(), second.octets().end());
    const captured_packets got(both);
    EXPECT_EQ(got.end, packet_read::END) << got.error;
    ASSERT_EQ(got.packets.size(), 2U);
    EXPECT_EQ(got.packets[0].section, 0U);
    EXPECT_EQ(got.packets[0].from.link_type, 1U);
    EXPECT_EQ(got.packets[1].section, 1U);
    EXPECT_EQ(got.packets[1].from.link_type, 9U);
    EXPECT_EQ(got.packets[1].number, 2U);
    EXPECT_EQ(got.packets[1].time_ns, 2000);
    const pcapng_octets without = pcapng_octets().section().interface(1).section().packet(0, 0, THREE);
    EXPECT_EQ(error_of(without.octets()), "packet 1 at offset 76: interface 0 is not described");
}

TEST(pcapng_reader, simple_packets_are_of_the_first_interface) {
    pcapng_octets file;
    file.section().interface(1, 4).interface(9);
    file.block(3, file.empty().word(6).padded(std::span(SIX).first(4)));
    file.block(3, file.empty().word(3).padded(THREE));
    const captured_packets got = parsed(file);
    ASSERT_EQ(got.packets.size(), 2U);
    EXPECT_EQ(got.packets[0].from.link_type, 1U);
    EXPECT_FALSE(got.packets[0].time_ns);
    EXPECT_EQ(got.packets[0].original_length, 6U);
    EXPECT_EQ(got.packets[0].octets.size(), 4U) << "the capture length of the interface";
    EXPECT_TRUE(std::ranges::equal(got.packets[1].octets, THREE));
    EXPECT_EQ(error_of(pcapng_octets().section().block(3, pcapng_octets().word(0)).octets()),
              "packet 1 at offset 28: interface 0 is not described");
}

TEST(pcapng_reader, obsolete_packets_count_the_dropped_ones) {
    for (const bool big_endian : {false, true}) {
        pcapng_octets file(big_endian);
        file.section().interface(1).interface(9);
        file.block(2, file.empty().half(1).half(5).word(0).word(7).word(3).word(60).padded(THREE).word_option(2, 2));
        file.block(2, file.empty().half(1).half(0xFFFF).word(0).word(8).word(3).word(2).padded(THREE));
        const captured_packets got = parsed(file);
        ASSERT_EQ(got.packets.size(), 2U);
        EXPECT_EQ(got.packets[0].from.link_type, 9U);
        EXPECT_EQ(got.packets[0].lost, 5U);
        EXPECT_EQ(got.packets[0].time_ns, 7000);
        EXPECT_EQ(got.packets[0].original_length, 60U);
        EXPECT_EQ(got.packets[0].flags, 2U);
        EXPECT_EQ(got.packets[1].lost, 0U) << "not known";
        EXPECT_EQ(got.packets[1].original_length, 3U) << "never less than was captured";
    }
}

TEST(pcapng_reader, check_sequences_are_taken_off) {
    constexpr std::array<std::uint8_t, 1> bits = {32};
    pcapng_octets file;
    file.section().interface(1, 13, bits).packet(0, 0, SIX);
    file.block(6, file.packet_body(0, 0, SIX).word_option(2, 2 << 5 | 1));
    const captured_packets got = parsed(file);
    ASSERT_EQ(got.packets.size(), 2U);
    EXPECT_EQ(got.packets[0].octets.size(), 2U);
    EXPECT_EQ(got.packets[0].original_length, 2U);
    EXPECT_EQ(got.packets[1].octets.size(), 4U) << "the packet's own flags go before";
}

TEST(pcapng_reader, other_blocks_are_passed_over) {
    pcapng_octets file;
    file.section().block(4, file.empty().word(0)).interface(1).block(0x80000001, file.empty());
    file.block(0xBAD, file.empty().padded(std::vector<std::uint8_t>(byte_stream::CAPACITY + 400)));
    file.packet(0, 0, THREE).block(5, file.empty().word(0).word(0).word(0));
    EXPECT_EQ(parsed(file).packets.size(), 1U);
}

TEST(pcapng_reader, a_packet_longer_than_its_buffer_is_kept_in_part) {
    std::vector<std::uint8_t> large(byte_stream::CAPACITY + 1001);
    for (std::size_t i = 0; i < large.size(); ++i) {
        large[i] = static_cast<std::uint8_t>(i * 7);
    }
    pcapng_octets file;
    file.section().interface(1);
    file.block(6, file.packet_body(0, 9000, large).option(1, "long").word_option(2, 2).end_options());
    file.packet(0, 0, THREE);
    const captured_packets got = parsed(file);
    ASSERT_EQ(got.packets.size(), 2U);
    EXPECT_TRUE(std::ranges::equal(got.packets[0].octets, std::span(large).first(captured_packet::MAX_KEPT)));
    EXPECT_EQ(got.packets[0].captured_length, large.size());
    EXPECT_EQ(got.packets[0].text, "long");
    EXPECT_EQ(got.packets[0].flags, 2U);
    EXPECT_TRUE(std::ranges::equal(got.packets[1].octets, THREE));
    const std::span<const std::uint8_t> whole = file.octets();
    const std::string announced = "packet 1 at offset 48: 263200 octets announced, ";
    EXPECT_EQ(error_of(whole.first(48 + 263199)), announced + "263199 held");
    EXPECT_EQ(error_of(whole.first(48 + 263100)), announced + "263100 held");
    EXPECT_EQ(error_of(whole.first(48 + 1000)), announced + "1000 held");
}

TEST(pcapng_reader, every_cut_gives_the_packets_before_it_and_one_reason) {
    pcapng_octets file;
    file.section().interface(1).packet(0, 0, SIX);  // 28, 20 and 40 octets
    file.block(6, file.packet_body(0, 0, THREE).option(1, "why?").word_option(2, 1).end_options());
    const std::span<const std::uint8_t> whole = file.octets();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const captured_packets got{whole.first(length)};
        EXPECT_EQ(got.packets.size(), length < 88 ? 0U : 1U) << length;
        const bool between = length == 28 || length == 48 || length == 88;
        EXPECT_EQ(got.end, between ? packet_read::END : packet_read::DAMAGED) << length;
        EXPECT_EQ(got.error.empty(), between) << got.error;
        EXPECT_EQ(got.error.find('\n'), std::string::npos);
    }
    EXPECT_EQ(error_of(whole.first(3)), "offset 0: the number that tells its format is cut off: 3 of 4 octets held");
    EXPECT_EQ(error_of(whole.first(11)), "block at offset 0: its header is cut off: 11 of 12 octets held");
    EXPECT_EQ(error_of(whole.first(27)), "block at offset 0: 28 octets announced, 27 held");
    EXPECT_EQ(error_of(whole.first(55)), "block at offset 48: its header is cut off: 7 of 8 octets held");
    EXPECT_EQ(error_of(whole.first(100)), "packet 2 at offset 88: 56 octets announced, 12 held");
}

/// A section and an Ethernet interface; what follows is at offset 48.
pcapng_octets begun() { return pcapng_octets().section().interface(1); }

TEST(pcapng_reader, names_what_cannot_be) {
    const std::pair<pcapng_octets, const char*> files[] = {
        {begun().word(6).word(33).word(0), "packet 1 at offset 48: no block can have a length of 33"},
        {begun().word(6).word(8).word(0), "packet 1 at offset 48: no block can have a length of 8"},
        {begun().word(6).word(12).word(12), "packet 1 at offset 48: a packet block of 12 octets is too short"},
        {begun().word(3).word(12).word(12), "packet 1 at offset 48: a packet block of 12 octets is too short"},
        {begun().word(1).word(16).word(0).word(16),
         "block at offset 48: an interface description of 16 octets is too short"},
        {begun().word(7).word(16).word(0).word(20), "block at offset 48: its length is 16 in front, but 20 at its end"},
        {begun().packet(1, 0, THREE), "packet 1 at offset 48: interface 1 is not described"},
        {begun().block(6, pcapng_octets().word(0).word(0).word(0).word(5).word(5).word(0)),
         "packet 1 at offset 48: 5 octets announced, 4 held"},
        {begun().block(6, pcapng_octets().word(0).word(0).word(0).word(0xFFFFFFFF).word(0xFFFFFFFF)),
         "packet 1 at offset 48: 4294967295 octets announced, 0 held"},
        {begun().block(3, pcapng_octets().word(5).word(0)), "packet 1 at offset 48: 5 octets announced, 4 held"},
        {begun().block(6, pcapng_octets().packet_body(0, 0, THREE).half(2).half(5).word(0)),
         "packet 1 at offset 48: option 2: 5 octets announced, 4 held"},
        {begun().block(1, pcapng_octets().word(1).word(0).half(9).half(1)),
         "block at offset 48: option 9: 1 octets announced, 0 held"},
        {begun().block(0x0A0D0D0A, pcapng_octets().word(0x1A2B3C4D).half(3).half(1).long_word(0)),
         "block at offset 48: version 3.1 of the format is not known"},
        {begun().block(0x0A0D0D0A, pcapng_octets().word(0x1A2B3C4D).half(1).half(0)),
         "block at offset 48: a section header of 20 octets is too short"},
        {begun().block(0x0A0D0D0A, pcapng_octets().word(0x1A2B3C4E).half(1).half(0).long_word(0)),
         "block at offset 48: its byte order is not known"},
    };
    for (const auto& [file, error] : files) {
        EXPECT_EQ(error_of(file.octets()), error);
    }
}

TEST(pcapng_reader, a_section_has_so_many_interfaces_and_no_more) {
    pcapng_octets file;
    file.section();
    for (std::size_t i = 0; i < pcapng_format::MAX_INTERFACES; ++i) {
        file.interface(1);
    }
    file.packet(4095, 0, THREE);
    EXPECT_EQ(parsed(file).packets.size(), 1U);
    file.interface(1);
    EXPECT_EQ(error_of(file.octets()), "block at offset 81984: a section has more than 4096 interfaces");
}

struct time_row {
    std::uint64_t units;
    time_scale scale;
    std::int64_t ns;
};

TEST(pcapng_time, of_every_resolution) {
    constexpr std::int64_t latest = 0x7FFFFFFFFFFFFFFF;
    constexpr std::int64_t earliest = -latest - 1;
    constexpr std::uint64_t most = ~std::uint64_t{0};
    const time_row rows[] = {
        {1, {0, 0}, 1'000'000'000},
        {1234, {3, 0}, 1'234'000'000},
        {1234567, {6, 0}, 1'234'567'000},
        {1234567890123, {9, 0}, 1'234'567'890'123},
        {1'234'567'890'123'999, {12, 0}, 1'234'567'890'123},
        {most, {19, 0}, 1'844'674'407},
        {most, {20, 0}, 184'467'440},
        {most, {28, 0}, 1},
        {most, {29, 0}, 0},
        {most, {127, 0}, 0},
        {1, {0x80, 0}, 1'000'000'000},
        {3, {0x81, 0}, 1'500'000'000},
        {0x0000000180000000, {0xA0, 0}, 1'500'000'000},
        {most, {0xA2, 0}, 1'073'741'823'999'999'999},
        {most, {0xBF, 0}, 1'999'999'999},
        {most, {0xC0, 0}, 999'999'999},
        {most, {0xE2, 0}, 0},
        {most, {0xFF, 0}, 0},
        {5'000, {3, -7}, -2'000'000'000},
        {5'500, {3, 100}, 105'500'000'000},
        {most, {0, 0}, latest},
        {most, {0, latest}, latest},
        {0, {6, earliest}, earliest},
        {most, {9, 0}, latest},
        {0x7FFFFFFFFFFFFFFF, {9, 0}, latest},
    };
    for (const time_row& row : rows) {
        EXPECT_EQ(nanoseconds(row.units, row.scale), row.ns)
            << row.units << " " << int{row.scale.resolution} << " " << row.scale.offset_s;
    }
}

TEST(pcapng_time, is_that_of_the_interface) {
    constexpr std::array<std::uint8_t, 1> milliseconds = {3};
    pcapng_octets file;
    pcapng_octets described = file.empty();
    described.half(1).half(0).word(0).option(9, std::array<std::uint8_t, 1>{9}).long_option(14, 1'000).end_options();
    file.section().interface(1, 9, milliseconds).block(1, described).packet(0, 5, THREE).packet(1, 5, THREE);
    const captured_packets got = parsed(file);
    ASSERT_EQ(got.packets.size(), 2U);
    EXPECT_EQ(got.packets[0].time_ns, 5'000'000);
    EXPECT_EQ(got.packets[1].time_ns, 1'000'000'000'005);
}

}  // namespace
}  // namespace ifwatch::capture
