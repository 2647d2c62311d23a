#include "base/octets.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>

namespace ifwatch {
namespace {

TEST(octets, reads_in_both_orders) {
    std::array<std::uint8_t, 4> buffer{0x12, 0x34, 0x56, 0x78};
    const octets view = octets_of(buffer);
    EXPECT_EQ(view[0], 0x12);
    EXPECT_EQ(view.be16(1), 0x3456);
    EXPECT_EQ(view.be24(1), 0x345678U);
    EXPECT_EQ(view.be32(0), 0x12345678U);
    EXPECT_EQ(view.le16(0), 0x3412);
    EXPECT_EQ(view.le32(0), 0x78563412U);
}

TEST(octets, reads_zero_where_nothing_is_held) {
    std::array<std::uint8_t, 3> buffer{0xAA, 0xBB, 0xCC};
    const octets view = octets_of(std::span(buffer).first(2));
    EXPECT_EQ(view[2], 0);
    EXPECT_EQ(view[-1], 0);
    EXPECT_EQ(view[INT_MAX], 0);
    EXPECT_EQ(view[INT_MIN], 0);
    EXPECT_EQ(view.be16(1), 0xBB00);
    EXPECT_EQ(view.be16(-1), 0x00AA);
    EXPECT_EQ(view.be16(-2), 0);
    EXPECT_EQ(view.be16(INT_MIN), 0);
    EXPECT_EQ(view.be24(0), 0xAABB00U);
    EXPECT_EQ(view.be32(-3), 0x000000AAU);
    EXPECT_EQ(view.be32(0), 0xAABB0000U);
    EXPECT_EQ(view.le32(1), 0x000000BBU);
}

TEST(octets, writes_nothing_outside) {
    std::array<std::uint8_t, 3> buffer{1, 2, 3};
    const octets view = octets_of(std::span(buffer).first(2));
    view.set(1, 9);
    view.set(2, 9);
    view.set(-1, 9);
    EXPECT_EQ(buffer, (std::array<std::uint8_t, 3>{1, 9, 3}));
}

TEST(octets, declared_length_is_kept_as_declared) {
    std::array<std::uint8_t, 4> buffer{1, 2, 3, 4};
    const octets view = octets_of(buffer).at(0, 100);
    EXPECT_EQ(view.length, 100);
    EXPECT_EQ(view.held(), 4);
    EXPECT_EQ(view.within(), 4);
    EXPECT_EQ(view.at(2, -5).within(), 0);
    EXPECT_EQ(view.at(2, -5).length, -5);
    EXPECT_EQ(view.at(2, 1).within(), 1);
}

TEST(octets, skip_moves_and_shortens) {
    std::array<std::uint8_t, 4> buffer{1, 2, 3, 4};
    const octets view = octets_of(buffer).skip(3);
    EXPECT_EQ(view[0], 4);
    EXPECT_EQ(view.length, 1);
    EXPECT_EQ(view.skip(5).length, -4);
    EXPECT_EQ(view.skip(5).held(), 0);
    EXPECT_EQ(view.skip(5)[0], 0);
    EXPECT_EQ(view.skip(INT_MIN)[0], 4) << "a negative step never moves back";
    EXPECT_EQ(view.skip(-2).length, 3);
}

TEST(octets, cut_moves_the_hard_end_in) {
    std::array<std::uint8_t, 4> buffer{1, 2, 3, 4};
    const octets inner = octets_of(buffer).cut(2);
    EXPECT_EQ(inner[1], 2);
    EXPECT_EQ(inner[2], 0);
    EXPECT_EQ(octets_of(buffer).cut(9).held(), 4);
    EXPECT_EQ(octets_of(buffer).cut(9).length, 9);
    EXPECT_EQ(octets_of(buffer).cut(-1).held(), 0);
}

TEST(octets, run_gives_only_what_is_held) {
    std::array<std::uint8_t, 4> buffer{1, 2, 3, 4};
    const octets view = octets_of(buffer);
    EXPECT_EQ(view.run(1, 2).size(), 2U);
    EXPECT_EQ(view.run(1, 2)[0], 2);
    EXPECT_EQ(view.run(3, INT_MAX).size(), 1U);
    EXPECT_TRUE(view.run(4, 1).empty());
    EXPECT_TRUE(view.run(0, -1).empty());
    EXPECT_EQ(view.run(-3, 2).size(), 2U);
}

TEST(octets, text_ends_at_a_zero_or_the_hard_end) {
    std::array<std::uint8_t, 6> buffer{'a', 'b', 0, 'c', 'd', 'e'};
    const octets view = octets_of(buffer);
    EXPECT_EQ(view.text(0, 6), "ab");
    EXPECT_EQ(view.text(3, 2), "cd");
    EXPECT_EQ(view.text(3, 99), "cde");
    EXPECT_EQ(view.text(6, 3), "");
}

TEST(octets, an_empty_view_holds_nothing) {
    const octets nothing;
    EXPECT_EQ(nothing.held(), 0);
    EXPECT_EQ(nothing[0], 0);
    EXPECT_EQ(nothing.skip(3).held(), 0);
    EXPECT_TRUE(nothing.run(0, 5).empty());
}

}  // namespace
}  // namespace ifwatch
