#include "eft/eft_field.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/captured_output.h"

namespace ifwatch {
namespace {

std::uint32_t number(std::vector<std::uint8_t> held, int length) {
    octets value = octets_of(held);
    value.length = length;
    return eft_number(value);
}

TEST(eft_number, network_order_modulo_2_to_the_32) {
    EXPECT_EQ(number({}, 0), 0U);
    EXPECT_EQ(number({0xFF}, 1), 0xFFU);
    EXPECT_EQ(number({0x12, 0x34, 0x56}, 3), 0x123456U);
    EXPECT_EQ(number({0xFF, 0xFF, 0xFF, 0xFF}, 4), 0xFFFFFFFFU);
    EXPECT_EQ(number({0x01, 0x02, 0x03, 0x04, 0x05}, 5), 0x02030405U);
}

TEST(eft_number, made_of_the_octets_declared_and_held) {
    EXPECT_EQ(number({0x12, 0x34}, 1), 0x12U);
    EXPECT_EQ(number({0x12, 0x34}, 4), 0x1234U);
    EXPECT_EQ(number({0x12}, -1), 0U);
}

TEST(eft_label, takes_24_columns) {
    captured_output output;
    print_eft_label("Date:");
    EXPECT_EQ(output.take(), "\n\t\tDate:                   ");
    print_eft_label("User field/Application reference:");
    EXPECT_EQ(output.take(), "\n\t\tUser field/Application r");
}

TEST(eft_flags, print_in_the_order_of_the_bits_without_the_absent_ones) {
    constexpr table_text texts[] = {nullptr, "one,", "two,"};
    captured_output output;
    print_eft_flags(texts, 0xFF);
    EXPECT_EQ(output.take(), "one,two,");
    print_eft_flags(texts, 0x04);
    EXPECT_EQ(output.take(), "two,");
    print_eft_flags(texts, 0x01);
    EXPECT_EQ(output.take(), "");
}

}  // namespace
}  // namespace ifwatch
