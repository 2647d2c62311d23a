#include "inet/pptp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "display/display_context.h"
#include "support/captured_output.h"

namespace ifwatch {
namespace {

using segment = std::vector<std::uint8_t>;

/// A message whose length field says `declared`, with `length` octets in all.
segment message_of(int declared, std::size_t length) {
    segment octets_made(length, 0xEE);
    octets_made[0] = static_cast<std::uint8_t>(declared >> 8);
    octets_made[1] = static_cast<std::uint8_t>(declared);
    return octets_made;
}

/// The lengths of the messages that come out of `data`, fed in pieces of `piece` octets.
std::vector<int> collect(pptp_state& state, segment data, int piece) {
    std::vector<int> lengths;
    const octets whole = octets_of(data);
    for (int start = 0; start < whole.length; start += piece) {
        octets rest = whole.skip(start).cut(std::min(piece, whole.length - start));
        while (const auto message = pptp_collect(state, rest)) {
            EXPECT_EQ(message->held(), message->length);
            lengths.push_back(message->length);
        }
        EXPECT_EQ(rest.within(), 0) << "all that is fed is taken";
    }
    return lengths;
}

segment joined(std::initializer_list<segment> parts) {
    segment all;
    for (const segment& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

TEST(pptp_collect, finds_the_same_messages_however_they_are_cut) {
    const segment data = joined({message_of(156, 156), message_of(12, 12), message_of(16, 16), message_of(256, 256)});
    for (int piece = 1; piece <= static_cast<int>(data.size()); ++piece) {
        pptp_state state;
        EXPECT_THAT(collect(state, data, piece), testing::ElementsAre(156, 12, 16, 256)) << piece;
    }
}

TEST(pptp_collect, takes_a_length_below_the_header_for_the_header) {
    for (const int declared : {0, 1, 11, 12}) {
        pptp_state state;
        EXPECT_THAT(collect(state, joined({message_of(declared, 12), message_of(14, 14)}), 5),
                    testing::ElementsAre(12, 14))
            << declared;
    }
}

TEST(pptp_collect, takes_off_all_of_a_long_message_and_keeps_256) {
    for (const std::size_t length : {257U, 300U, 0x7FFFU, 0xFFFFU}) {
        const segment data = joined({message_of(static_cast<int>(length), length), message_of(14, 14)});
        for (const int piece : {1, 100, 256, 70000}) {
            pptp_state state;
            EXPECT_THAT(collect(state, data, piece), testing::ElementsAre(256, 14)) << length << " by " << piece;
        }
    }
}

TEST(pptp_collect, leaves_what_stands_behind_a_message) {
    pptp_state state;
    segment data = joined({message_of(12, 12), message_of(20, 3)});
    octets rest = octets_of(data);
    ASSERT_TRUE(pptp_collect(state, rest));
    EXPECT_EQ(rest.length, 3);
    EXPECT_EQ(rest.be16(0), 20);
    EXPECT_FALSE(pptp_collect(state, rest));
    EXPECT_EQ(state.count, 3);
}

TEST(pptp_collect, takes_nothing_of_a_negative_length) {
    pptp_state state;
    segment data = message_of(12, 5);
    octets negative = octets_of(data);
    negative.length = -5;
    EXPECT_FALSE(pptp_collect(state, negative));
    EXPECT_EQ(state.count, 0);
}

TEST(pptp_collect, completes_with_zeros_what_has_begun_and_begins_nothing_with_them) {
    pptp_state state;
    segment before = message_of(20, 20);  // what stood in the buffer before does not show
    octets whole = octets_of(before);
    ASSERT_TRUE(pptp_collect(state, whole));
    segment data = message_of(20, 5);
    octets cut = octets_of(data);
    cut.length = 500;
    const auto message = pptp_collect(state, cut);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->length, 20);
    EXPECT_EQ((*message)[4], 0xEE);
    EXPECT_EQ(message->be32(5) | message->be32(9) | message->be32(13) | message->be32(16), 0U);
    EXPECT_EQ(cut.length, 480);
    EXPECT_FALSE(pptp_collect(state, cut));
    EXPECT_EQ(state.count, 0);
}

TEST(pptp_collect, goes_on_behind_octets_that_were_not_held) {
    pptp_state state;
    segment data = message_of(40, 15);
    octets first = octets_of(data);
    first.length = 30;
    EXPECT_FALSE(pptp_collect(state, first));
    EXPECT_EQ(state.count, 30);
    octets nothing = first.at(15, 6);
    EXPECT_FALSE(pptp_collect(state, nothing));
    EXPECT_EQ(state.count, 36);
    segment rest(4, 0xAA);
    octets last = octets_of(rest);
    const auto message = pptp_collect(state, last);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->be32(32), 0U);
    EXPECT_EQ(message->be32(36), 0xAAAAAAAAU);
}

TEST(dump_pptp, keeps_the_directions_apart) {
    display_context context;
    init_display_context(context);
    segment request = {0, 16, 0, 1, 0x1A, 0x2B, 0x3C, 0x4D, 0, 5, 0, 0, 0xDE, 0xAD, 0xBE, 0xEF};
    const octets whole = octets_of(request);
    captured_output output;
    dump_pptp(whole.cut(7), context, PPTP_PORT);
    dump_pptp(whole.cut(15), context, 1031);
    dump_pptp(whole.skip(7), context, PPTP_PORT);
    EXPECT_EQ(output.take(), "\n\t\t\tPPTP Echo Request\n\t\t\tIdent: deadbeef\n");
    dump_pptp(whole.skip(15), context, 1032);
    EXPECT_EQ(output.take(), "\n\t\t\tPPTP Echo Request\n\t\t\tIdent: deadbeef\n");
}

TEST(dump_pptp, shows_nothing_of_an_earlier_message) {
    display_context context;
    init_display_context(context);
    captured_output output;
    segment full = message_of(156, 156);
    dump_pptp(octets_of(full), context, PPTP_PORT);
    EXPECT_EQ(output.take(), "\t\t\tunknown PPTP message\n");
    segment bare = {0, 12, 0, 1, 0x1A, 0x2B, 0x3C, 0x4D, 0, 5, 0, 0};
    dump_pptp(octets_of(bare), context, PPTP_PORT);
    EXPECT_EQ(output.take(), "\n\t\t\tPPTP Echo Request\n\t\t\tIdent: 0\n");
}

}  // namespace
}  // namespace ifwatch
