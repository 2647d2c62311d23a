#include "trace/trace_target.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace ifwatch {
namespace {

struct split_case {
    std::int32_t index, slot, unit, channel;
};

class split_index : public testing::TestWithParam<split_case> {};

TEST_P(split_index, names_slot_unit_and_channel) {
    const split_case& expected = GetParam();
    trace_target target;
    split_interface_index(target, expected.index);
    EXPECT_EQ(target.slot, expected.slot);
    EXPECT_EQ(target.unit, expected.unit);
    EXPECT_EQ(target.channel, expected.channel);
    EXPECT_EQ(interface_index(target), expected.index);
}

INSTANTIATE_TEST_SUITE_P(ordinary, split_index,
                         testing::Values(split_case{0, 0, 0, 0}, split_case{5, 0, 0, 5}, split_case{300, 0, 3, 0},
                                         split_case{1000, 1, 0, 0}, split_case{2100, 2, 1, 0},
                                         split_case{2131, 2, 1, 31}, split_case{99999, 99, 9, 99},
                                         split_case{150000, 150, 0, 0}, split_case{199999, 199, 9, 99},
                                         split_case{500000, 500, 0, 0}, split_case{2147483647, 2147483, 6, 47}));
INSTANTIATE_TEST_SUITE_P(virtual_interfaces, split_index,
                         testing::Values(split_case{100000, 0, 0, 100000}, split_case{100001, 0, 0, 100001},
                                         split_case{149999, 0, 0, 149999}));
INSTANTIATE_TEST_SUITE_P(two_digit_units, split_index,
                         testing::Values(split_case{200000, 200, 0, 0}, split_case{212345, 210, 23, 45},
                                         split_case{209999, 200, 99, 99}, split_case{499999, 490, 99, 99}));
INSTANTIATE_TEST_SUITE_P(negative, split_index,
                         testing::Values(split_case{-1, 0, 0, -1}, split_case{-1234, -1, -2, -34},
                                         split_case{-120000, -120, 0, 0}, split_case{-250000, -250, 0, 0}));

TEST(trace_target, index_wraps_instead_of_overflowing) {
    const std::int32_t most = std::numeric_limits<std::int32_t>::max();
    const trace_target target{.slot = most, .unit = most, .channel = most};
    EXPECT_EQ(interface_index(target), 2147483648 - 1101);  // 1101 * (2^31 - 1) modulo 2^32
}

TEST(trace_target, request_is_five_big_endian_words) {
    const trace_target target{.version = 2, .slot = 3, .unit = 1, .channel = 0x01020304, .capture_length = 64};
    std::array<std::uint8_t, TRACE_REQUEST_LENGTH> request{};
    encode_trace_request(target, request);
    const std::array<std::uint8_t, TRACE_REQUEST_LENGTH> expected{0, 0, 0, 2, 0, 0, 0, 3, 0, 0,
                                                                  0, 1, 1, 2, 3, 4, 0, 0, 0, 64};
    EXPECT_EQ(request, expected);
}

TEST(trace_target, stands_for_whole_frames_of_version_three) {
    std::array<std::uint8_t, TRACE_REQUEST_LENGTH> request{};
    encode_trace_request(trace_target{}, request);
    const std::array<std::uint8_t, TRACE_REQUEST_LENGTH> expected{0, 0, 0, 3, 0, 0, 0,    0,    0,    0,
                                                                  0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(request, expected);
}

}  // namespace
}  // namespace ifwatch
