#include "inet/ip_address.h"

#include <gtest/gtest.h>

#include <vector>

namespace ifwatch {
namespace {

std::string dotted(std::vector<std::uint8_t> address) {
    text_buffer<IP_ADDRESS_WIDTH> buffer;
    return std::string(ip_to_string(buffer, octets_of(address)));
}

TEST(ip_to_string, writes_the_four_octets) {
    EXPECT_EQ(dotted({10, 1, 2, 3}), "10.1.2.3");
    EXPECT_EQ(dotted({255, 255, 255, 255}), "255.255.255.255");
}

TEST(ip_to_string, is_empty_only_when_all_four_are_zero) {
    EXPECT_EQ(dotted({0, 0, 0, 0}), "");
    EXPECT_EQ(dotted({1, 0, 0, 0}), "1.0.0.0");
    EXPECT_EQ(dotted({0, 0, 0, 1}), "0.0.0.1");
}

TEST(ip_to_string, takes_octets_that_are_not_held_for_zero) {
    EXPECT_EQ(dotted({10, 1}), "10.1.0.0");
    EXPECT_EQ(dotted({}), "");
}

TEST(ip_to_string, writes_a_used_buffer_anew) {
    text_buffer<IP_ADDRESS_WIDTH> buffer;
    std::vector<std::uint8_t> addresses = {192, 168, 100, 200, 1, 2, 3, 4};
    EXPECT_EQ(ip_to_string(buffer, octets_of(addresses)), "192.168.100.200");
    EXPECT_EQ(ip_to_string(buffer, octets_of(addresses).skip(4)), "1.2.3.4");
}

}  // namespace
}  // namespace ifwatch
