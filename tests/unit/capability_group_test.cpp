#include "isdn/capability_group.h"

#include <gtest/gtest.h>

#include <vector>

namespace ifwatch {
namespace {

TEST(capability_group, walks_a_group_to_the_octet_with_bit_7_set) {
    std::vector<std::uint8_t> element = {0x04, 0x04, 0x01, 0x02, 0x83, 0x84};
    capability_group group{octets_of(element)};
    EXPECT_EQ(group.octet(), 0x01);
    EXPECT_TRUE(group.next_in_group());
    EXPECT_EQ(group.octet(), 0x02);
    EXPECT_TRUE(group.next_in_group());
    EXPECT_EQ(group.octet(), 0x83);
    EXPECT_TRUE(group.is_last());
    EXPECT_FALSE(group.next_in_group());
    EXPECT_EQ(group.octet(), 0x83);
}

TEST(capability_group, moves_from_anywhere_in_a_group_to_the_next) {
    std::vector<std::uint8_t> element = {0x04, 0x04, 0x01, 0x02, 0x83, 0x84};
    capability_group group{octets_of(element)};
    EXPECT_TRUE(group.next_group());
    EXPECT_EQ(group.octet(), 0x84);
    EXPECT_FALSE(group.next_group());
    EXPECT_FALSE(group.inside());
}

TEST(capability_group, ends_with_the_element_though_more_is_held) {
    std::vector<std::uint8_t> message = {0x04, 0x02, 0x01, 0x02, 0x83, 0x84};
    capability_group group{octets_of(message).at(0, 4)};
    EXPECT_FALSE(group.next_group());
    EXPECT_FALSE(group.next_in_group());
    EXPECT_FALSE(group.advance(1));
}

TEST(capability_group, is_empty_without_contents) {
    std::vector<std::uint8_t> message = {0x04, 0x00, 0x81};
    capability_group group{octets_of(message).at(0, 2)};
    EXPECT_FALSE(group.inside());
    EXPECT_FALSE(group.next_in_group());
    EXPECT_FALSE(group.next_group());
}

}  // namespace
}  // namespace ifwatch
