#include "ppp/pap.h"

#include <gtest/gtest.h>

#include <vector>

namespace ifwatch {
namespace {

std::string counted(std::vector<std::uint8_t> source) { return std::string(counted_string(octets_of(source))); }

TEST(counted_string, is_as_long_as_its_first_octet_says) {
    EXPECT_EQ(counted({3, 'a', 'b', 'c', 'd'}), "abc");
    EXPECT_EQ(counted({1, 'a', 'b'}), "a");
}

TEST(counted_string, shows_that_it_is_empty) {
    EXPECT_EQ(counted({0, 'a'}), "<none>");
    EXPECT_EQ(counted({}), "<none>");
}

TEST(counted_string, ends_at_a_zero_octet_and_with_the_octets_held) {
    EXPECT_EQ(counted({4, 'a', 0, 'b', 'c'}), "a");
    EXPECT_EQ(counted({4, 0, 'a', 'b', 'c'}), "");
    EXPECT_EQ(counted({255, 'a', 'b'}), "ab");
    EXPECT_EQ(counted({5}), "");
}

}  // namespace
}  // namespace ifwatch
