#include "base/number_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <string>

namespace ifwatch {
namespace {

std::string decimal(std::uint32_t value, int least) {
    std::array<char, 64> room{};
    return {room.data(), write_decimal(room.data(), value, least)};
}

std::string expected_decimal(std::uint32_t value, int least) {
    std::array<char, 64> room{};
    const int count = std::snprintf(room.data(), room.size(), "%0*u", std::max(least, 1), value);
    return {room.data(), static_cast<std::size_t>(count)};
}

TEST(write_decimal, agrees_with_the_c_library_around_every_power_of_ten) {
    for (std::uint64_t power = 1; power <= std::numeric_limits<std::uint32_t>::max(); power *= 10) {
        for (std::uint64_t value : {power - 1, power, power + 1, power * 3 + 7, power * 4 / 3}) {
            value = std::min<std::uint64_t>(value, std::numeric_limits<std::uint32_t>::max());
            for (int least = -1; least <= 20; ++least) {
                const auto number = static_cast<std::uint32_t>(value);
                ASSERT_EQ(decimal(number, least), expected_decimal(number, least)) << least;
            }
        }
    }
}

TEST(write_decimal, agrees_with_the_c_library_for_four_digits_and_in_both_halves_of_eight) {
    for (std::uint32_t value = 0; value < 10000; ++value) {
        ASSERT_EQ(decimal(value, 0), expected_decimal(value, 0));
        ASSERT_EQ(decimal(value * 10000 + 9999 - value, 8), expected_decimal(value * 10000 + 9999 - value, 8));
    }
}

TEST(write_decimal, keeps_to_its_room) {
    for (const std::uint32_t value : {0U, 7U, 255U, 256U, 65535U, 99999999U, 100000000U, 4294967295U}) {
        for (int least = 0; least <= 12; ++least) {
            const std::size_t length = expected_decimal(value, least).size();
            std::string room(32, '#');
            write_decimal(room.data(), value, least);
            const std::size_t taken = std::max(length, DECIMAL_ROOM);
            EXPECT_EQ(room.substr(taken), std::string(room.size() - taken, '#')) << value << ", at least " << least;
        }
    }
}

TEST(write_octet, knows_every_octet) {
    for (int value = 0; value < 256; ++value) {
        std::array<char, 4> room{};
        EXPECT_EQ(std::string(room.data(), write_octet(room.data(), static_cast<std::uint8_t>(value))),
                  std::to_string(value));
    }
}

TEST(write_hex, has_as_many_digits_as_it_needs_or_must) {
    const auto hex = [](std::uint32_t value, int least) {
        std::array<char, 16> room{};
        return std::string(room.data(), write_hex(room.data(), value, least, hex_digits(false)));
    };
    EXPECT_EQ(hex(0, 0), "0");
    EXPECT_EQ(hex(0xF, 4), "000f");
    EXPECT_EQ(hex(0xF, 2), "0f");
    EXPECT_EQ(hex(0xFF, 2), "ff");
    EXPECT_EQ(hex(0x100, 2), "100");
    EXPECT_EQ(hex(0x10, 0), "10");
    EXPECT_EQ(hex(0xFFFFFFFF, 0), "ffffffff");
    EXPECT_EQ(hex(0xABC, 10), "0000000abc");
}

}  // namespace
}  // namespace ifwatch
