#include "base/hex_dump.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

#include "base/format.h"
#include "base/print.h"
#include "support/captured_output.h"

namespace ifwatch {
namespace {

std::string dumped(std::vector<std::uint8_t> data, int length, int per_line, int indent) {
    captured_output output;
    hex_dump(octets_of(data), length, per_line, indent);
    return output.take();
}

TEST(hex_dump, one_short_line_is_padded_in_both_columns) {
    EXPECT_EQ(dumped({0x41, 0x42, 0x00, 0x7F, 0x43}, 5, 16, 0),
              "0000: 41 42 00 7f 43 " + std::string(33 + 1, ' ') + " AB..C" + std::string(11, ' ') + "\n");
}

TEST(hex_dump, a_full_line_has_a_wider_gap_in_its_middle) {
    std::vector<std::uint8_t> data(16);
    std::iota(data.begin(), data.end(), std::uint8_t{0x20});
    EXPECT_EQ(dumped(data, 16, 16, 0), "0000: 20 21 22 23 24 25 26 27  28 29 2a 2b 2c 2d 2e 2f   !\"#$%&'()*+,-./\n");
}

TEST(hex_dump, the_seventeenth_octet_begins_a_second_line) {
    std::vector<std::uint8_t> data(17, 0xE4);
    std::string first = "      0000: ";
    for (int i = 0; i < 16; ++i) {
        first += i == 8 ? " e4 " : "e4 ";
    }
    EXPECT_EQ(dumped(data, 17, 16, 6), first + " ................\n" + "      0010: e4 " +
                                           std::string(15 * 3 + 1, ' ') + " ." + std::string(15, ' ') + "\n");
}

TEST(hex_dump, nine_octets_cross_the_gap) {
    EXPECT_EQ(dumped(std::vector<std::uint8_t>(9, '1'), 9, 16, 0),
              "0000: 31 31 31 31 31 31 31 31  31 " + std::string(21, ' ') + " 111111111" + std::string(7, ' ') + "\n");
}

TEST(hex_dump, eight_octets_a_line) {
    EXPECT_EQ(dumped({1, 2, 3, 4, 5, 6, 7, 8}, 8, 8, 2), "  0000: 01 02 03 04  05 06 07 08  ........\n");
    EXPECT_EQ(dumped({1, 2}, 2, 8, 0),
              "0000: 01 02 " + std::string(6 * 3 + 1, ' ') + " .." + std::string(6, ' ') + "\n");
}

TEST(hex_dump, one_octet_a_line) { EXPECT_EQ(dumped({0x41, 0x42}, 2, 1, 0), "0000:  41  A\n0001:  42  B\n"); }

TEST(hex_dump, an_odd_line_has_its_gap_at_the_integer_half) {
    EXPECT_EQ(dumped({1, 2, 3}, 3, 3, 0), "0000: 01  02 03  ...\n");
}

template <format_text Format>
std::string formatted(unsigned value) {
    text_buffer<32> text;
    print_to<Format>(text, value);
    return std::string(text.text());
}

/// One octet after the other.
std::string plainly(const std::vector<std::uint8_t>& data, std::size_t per_line, std::size_t indent) {
    std::string all;
    for (std::size_t line = 0; line < data.size(); line += per_line) {
        all += std::string(indent, ' ') + formatted<"%04x: ">(static_cast<unsigned>(line));
        std::string characters;
        for (std::size_t column = 0; column < per_line; ++column) {
            all += column == per_line / 2 ? " " : "";
            if (line + column >= data.size()) {
                all += "   ";
                characters += ' ';
                continue;
            }
            const std::uint8_t octet = data[line + column];
            all += formatted<"%02x ">(octet);
            characters += is_printable(octet) ? static_cast<char>(octet) : '.';
        }
        all += " " + characters + "\n";
    }
    return all;
}

TEST(hex_dump, agrees_with_a_plain_one_for_every_width_length_and_indent) {
    for (std::size_t per_line = 1; per_line <= 20; ++per_line) {
        for (std::size_t length = 0; length <= 45; ++length) {
            std::vector<std::uint8_t> data(length);
            std::iota(data.begin(), data.end(), static_cast<std::uint8_t>(0x6E));
            const std::size_t indent = (length + per_line) % 34;
            ASSERT_EQ(dumped(data, static_cast<int>(length), static_cast<int>(per_line), static_cast<int>(indent)),
                      plainly(data, per_line, indent))
                << length << " octets, " << per_line << " a line";
        }
    }
}

TEST(hex_dump, is_the_same_wherever_the_output_buffer_ends) {
    std::vector<std::uint8_t> data(40);
    std::iota(data.begin(), data.end(), std::uint8_t{0x41});
    const std::string expected = plainly(data, 16, 6);
    for (std::size_t room = 0; room < 320; ++room) {  // four lines
        captured_output output;
        const std::string before(standard_output.capacity - room, '#');
        put(standard_output, before);
        hex_dump(octets_of(data), 40, 16, 6);
        EXPECT_TRUE(output.take() == before + expected) << room << " characters of room";
    }
}

TEST(hex_dump, nothing_to_print) {
    EXPECT_EQ(dumped({1, 2}, 0, 16, 0), "");
    EXPECT_EQ(dumped({1, 2}, -3, 16, 0), "");
    EXPECT_EQ(dumped({}, 5, 16, 0), "");
}

TEST(hex_dump, a_line_longer_than_the_output_buffer_is_not_printed) { EXPECT_EQ(dumped({0x41}, 1, 20000, 0), ""); }

TEST(hex_dump, only_what_is_held) {
    EXPECT_EQ(dumped({0x41}, 400, 4, 0), "0000: 41 " + std::string(3 * 3 + 1, ' ') + " A" + std::string(3, ' ') + "\n");
}

TEST(hex_dump, offsets_above_four_digits_grow) {
    const std::string text = dumped(std::vector<std::uint8_t>(0x10001, 0), 0x10001, 16, 0);
    EXPECT_NE(text.find("\nfff0: 00"), std::string::npos);
    EXPECT_NE(text.find("\n10000: 00"), std::string::npos);
}

}  // namespace
}  // namespace ifwatch
