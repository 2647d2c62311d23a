#include "fax/t30_bitfields.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/captured_output.h"

namespace ifwatch {
namespace {

std::string capabilities(std::vector<std::uint8_t> fif, bool dcs) {
    captured_output output;
    dump_t30_bitfields(octets_of(fif), dcs);
    return output.take();
}

TEST(get_bitfield, counts_from_the_least_significant_bit_of_the_first_octet) {
    std::vector<std::uint8_t> field{0x01, 0x80, 0x28};
    EXPECT_EQ(get_bitfield(octets_of(field), 0, 1), 1);
    EXPECT_EQ(get_bitfield(octets_of(field), 1, 1), 0);
    EXPECT_EQ(get_bitfield(octets_of(field), 15, 1), 1);
    EXPECT_EQ(get_bitfield(octets_of(field), 19, 1), 1);
    EXPECT_EQ(get_bitfield(octets_of(field), 19, 3), 5);
}

TEST(get_bitfield, every_width) {
    std::vector<std::uint8_t> field{0xFF, 0xFF};
    const int masks[] = {0, 1, 3, 7, 15, 31, 63, 127, 255};
    for (int width = 0; width <= 8; ++width) {
        EXPECT_EQ(get_bitfield(octets_of(field), 0, width), masks[width]) << width;
    }
    EXPECT_EQ(get_bitfield(octets_of(field), 0, 9), -1);
}

TEST(get_bitfield, a_field_never_takes_bits_of_the_next_octet) {
    std::vector<std::uint8_t> field{0xC0, 0xFF, 0xFF};
    EXPECT_EQ(get_bitfield(octets_of(field), 6, 4), 3);
}

TEST(get_bitfield, the_last_index_is_seven_bits_for_each_octet) {
    for (int length = 0; length <= 12; ++length) {
        std::vector<std::uint8_t> field(static_cast<std::size_t>(length), 0xFF);
        for (int index = 0; index < 8 * length + 8; ++index) {
            const int expected = index > 7 * length ? -1 : (index < 8 * length ? 1 : 0);
            EXPECT_EQ(get_bitfield(octets_of(field), index, 1), expected) << length << ": " << index;
        }
    }
}

TEST(get_bitfield, octets_that_are_declared_and_not_held_read_as_0) {
    std::vector<std::uint8_t> field{0xFF};
    octets declared = octets_of(field);
    declared.length = 4;
    EXPECT_EQ(get_bitfield(declared, 0, 1), 1);
    EXPECT_EQ(get_bitfield(declared, 8, 1), 0);
    declared.length = -1;
    EXPECT_EQ(get_bitfield(declared, 0, 1), -1);
}

TEST(t30_bitfields, fields_of_several_bits_name_the_value_0_too) {
    EXPECT_EQ(capabilities({0, 0, 0}, false),
              "\t\tData signalling rate capability = V.27ter fallback mode\n"
              "\t\tRecording width capabilities = 215mm\n"
              "\t\tMaximum recording length capability = A4(297mm)\n"
              "\t\tMinimum receiver scan line time capability = 20ms\n");
}

TEST(t30_bitfields, bit_28_has_an_empty_text_in_a_dis) {
    EXPECT_TRUE(capabilities({0, 0, 0x80, 0x08}, false).ends_with("= 20ms\n\t\t\n"));
    EXPECT_TRUE(capabilities({0, 0, 0x80, 0x08}, true).ends_with("= 20ms\n\t\tECM Frame size = 64 octetts\n"));
}

TEST(t30_bitfields, bit_67_stands_for_two_lines) {
    const std::vector<std::uint8_t> fif{0, 0, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x04, 0};
    EXPECT_TRUE(
        capabilities(fif, false).ends_with("\t\tHalf-duplex operation only\n\t\tFull and half-duplex operation\n"));
    EXPECT_TRUE(capabilities(fif, true).ends_with("\t\tHalf-duplex operation\n\t\tFull-duplex operation\n"));
}

TEST(t30_rate_name, is_that_of_the_dcs) {
    std::vector<std::uint8_t> fif{0x00, 0x62, 0x78};
    EXPECT_EQ(t30_rate_name(octets_of(fif)), "14400 bit/s V.17");
    fif[1] = 0x42;
    EXPECT_EQ(t30_rate_name(octets_of(fif)), "2400 bit/s V.27ter");
    EXPECT_EQ(t30_rate_name(octets_of(fif).cut(1)), "");
}

}  // namespace
}  // namespace ifwatch
