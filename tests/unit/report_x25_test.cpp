// The arithmetic below the report on X.25: windows that are full, packets that are surely X.25, frames that come again.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include "base/text_sink.h"
#include "read/report/journal.h"
#include "read/report/lapb_tracker.h"
#include "read/report/x25_call_packet.h"
#include "read/report/x25_flow.h"
#include "read/report/x25_tracker.h"

namespace ifwatch::reporting {
namespace {

constexpr int MODULO_8 = 7;

class x25_flows : public testing::Test {
protected:
    journal about;
    x25_flow flow;

    x25_flows() { flow.known = true; }
};

TEST_F(x25_flows, AFullWindowThatWaitsLongStandsStill) {
    take_x25_data(flow, about, {1'000, 1}, 0, MODULO_8);
    take_x25_data(flow, about, {2'000, 2}, 1, MODULO_8);
    const standstill over = take_x25_acknowledgement(flow, about, {32'000, 3}, 2, MODULO_8);
    EXPECT_EQ(over.length_ms, 30'000U);
    EXPECT_EQ(over.first.number, 2U);
    EXPECT_EQ(over.window, 2);
}

TEST_F(x25_flows, AMomentIsInOrderAndSoIsAWindowWithRoom) {
    take_x25_data(flow, about, {1'000, 1}, 0, MODULO_8);
    EXPECT_EQ(take_x25_acknowledgement(flow, about, {100'000, 2}, 1, MODULO_8).length_ms, 0U);
    take_x25_data(flow, about, {100'000, 3}, 1, MODULO_8);
    take_x25_data(flow, about, {100'000, 4}, 2, MODULO_8);
    EXPECT_EQ(take_x25_acknowledgement(flow, about, {129'999, 5}, 3, MODULO_8).length_ms, 0U);
}

TEST_F(x25_flows, MorePacketsThanTheWindowAreALargerWindow) {
    for (int ps = 6; ps < 9; ++ps) {
        flow.acknowledged = 6;
        take_x25_data(flow, about, {static_cast<std::uint32_t>(ps), 1}, ps & MODULO_8, MODULO_8);
    }
    EXPECT_EQ(flow.window, 3);
    EXPECT_EQ(flow.stood_still.time_ms, 8U);
}

TEST_F(x25_flows, NothingIsConcludedAcrossLostRecordsOrWithoutAnAcknowledgementSeen) {
    take_x25_data(flow, about, {1'000, 1}, 0, MODULO_8);
    take_x25_data(flow, about, {2'000, 2}, 1, MODULO_8);
    about.lost = 1;
    EXPECT_EQ(take_x25_acknowledgement(flow, about, {90'000, 3}, 2, MODULO_8).length_ms, 0U);
    flow = {};
    take_x25_data(flow, about, {100'000, 4}, 2, MODULO_8);
    take_x25_data(flow, about, {100'000, 5}, 3, MODULO_8);
    EXPECT_FALSE(flow.full);
}

TEST_F(x25_flows, NotReadyCountsFromRnrToRr) {
    EXPECT_EQ(take_x25_readiness(flow, about, {1'000, 1}, false).length_ms, 0U);
    const standstill over = take_x25_readiness(flow, about, {61'000, 2}, true);
    EXPECT_EQ(over.length_ms, 60'000U);
    EXPECT_TRUE(over.not_ready);
}

bool surely(std::vector<std::uint8_t> packet) {
    return is_surely_x25(octets_of(packet), read_x25_header(octets_of(packet)));
}

TEST(X25CallPacket, IsSurelyX25OnlyWhereAllLengthsAreInOrder) {
    EXPECT_TRUE(surely({0x10, 0x01, 0x0B, 0x04, 0x51, 0x11}));
    EXPECT_TRUE(surely({0x10, 0x01, 0x0B, 0x04, 0x51, 0x11, 0x02, 0x01, 0x80}));
    EXPECT_FALSE(surely({0x10, 0x01, 0x0B, 0x04, 0x5A, 0x11}));              // no digit
    EXPECT_FALSE(surely({0x10, 0x01, 0x0B, 0x08, 0x51, 0x11}));              // digits missing
    EXPECT_FALSE(surely({0x10, 0x01, 0x0B, 0x04, 0x51, 0x11, 0x03, 0x01}));  // facilities missing
    EXPECT_FALSE(surely({0x10, 0x00, 0x0B, 0x04, 0x51, 0x11}));              // no channel
    EXPECT_FALSE(surely({'P', 'l', 'e', 'a', 's', 'e'}));
    EXPECT_TRUE(surely({0x10, 0x00, 0xFB, 0x00}));
    EXPECT_FALSE(surely({0x10, 0x01, 0xFB, 0x00}));
}

std::string text_of(const short_text& shown) {
    text_buffer<128> text;
    shown.put_to(text);
    return std::string(text.text());
}

TEST(X25CallPacket, ReadsAddressesOfOddLengthAndFacilities) {
    std::vector<std::uint8_t> packet = {0x10, 0x01, 0x0B, 0x43, 0x12, 0x34, 0x56, 0x70,
                                        0x06, 0x01, 0x80, 0x43, 0x04, 0x05, 0x00};
    const octets data = octets_of(packet);
    const x25_call_fields fields = read_x25_call_fields(data, read_x25_header(data));
    EXPECT_EQ(text_of(fields.called), "123");
    EXPECT_EQ(text_of(fields.calling), "4567");
    EXPECT_TRUE(fields.fast_select);
    EXPECT_EQ(fields.window_from_called, 4);
    EXPECT_EQ(fields.window_from_calling, 5);
}

class lapb_link : public testing::Test {
protected:
    trouble_list troubles;
    allowance shared;
    journal about{&troubles, &shared, "test", {}, 0, true};
    lapb_tracker tracker;
    std::uint32_t number = 0;

    bool arrives(bool sent, std::vector<std::uint8_t> octets_sent) {
        ++number;
        const frame what{{number, number}, sent, true, octets_of(octets_sent)};
        return take_lapb_link(tracker, about, what).packet.length > 0;
    }
};

TEST_F(lapb_link, AFrameOutOfOrderAndOneThatComesAgainAreLeftOut) {
    EXPECT_FALSE(arrives(true, {0x01, 0x3F}));
    EXPECT_FALSE(arrives(false, {0x01, 0x73}));
    EXPECT_TRUE(arrives(false, {0x03, 0x00, 'a'}));
    EXPECT_FALSE(arrives(false, {0x03, 0x04, 'c'}));  // 1 is missing
    EXPECT_TRUE(arrives(false, {0x03, 0x02, 'b'}));
    EXPECT_TRUE(arrives(false, {0x03, 0x04, 'c'}));
    EXPECT_FALSE(arrives(false, {0x03, 0x04, 'c'}));
}

TEST_F(lapb_link, WhatTheOtherSideAcknowledgesWasOnlyNotSeen) {
    EXPECT_TRUE(arrives(true, {0x01, 0x00, 'a'}));
    EXPECT_TRUE(arrives(false, {0x03, 0x80, 'x'}));  // N(R) = 4: 1, 2 and 3 are not in the capture
    EXPECT_TRUE(arrives(true, {0x01, 0x28, 'e'}));
}

TEST_F(lapb_link, BehindLostRecordsTheNextFrameCounts) {
    EXPECT_TRUE(arrives(false, {0x03, 0x00, 'a'}));
    about.lost = 3;
    EXPECT_TRUE(arrives(false, {0x03, 0x06, 'd'}));
}

TEST_F(lapb_link, CountsModulo128BehindSabme) {
    arrives(true, {0x01, 0x7F});
    arrives(false, {0x01, 0x73});
    for (int ns = 0; ns < 130; ++ns) {
        EXPECT_TRUE(arrives(true, {0x01, static_cast<std::uint8_t>((ns & 127) << 1), 0x00, 'a'})) << ns;
    }
}

TEST_F(lapb_link, WhatIsNoStationIsLeftAlone) {
    EXPECT_FALSE(arrives(true, {0x45, 0x00, 0x00}));
    EXPECT_TRUE(tracker.links.empty());
}

TEST(X25Tracker, RemembersNoMoreThanItsBound) {
    trouble_list troubles;
    allowance shared{1U << 20};
    const journal about{&troubles, &shared, "test", {}, 0, true};
    x25_tracker tracker;
    for (std::uint32_t i = 0; i < 20'000; ++i) {
        std::vector<std::uint8_t> call = {static_cast<std::uint8_t>(0x10 | (i >> 8 & 0x0F)),
                                          static_cast<std::uint8_t>(i), 0x0B, 0x00, 0x00};
        take_x25(tracker, about, {{i, i}, true, true, octets_of(call)}, static_cast<int>(i >> 12));
    }
    EXPECT_LE(tracker.calls.size(), allowance::MOST_OF_EACH);
    EXPECT_GT(tracker.calls.forgotten(), 0U);
    std::vector<std::uint8_t> restart = {0x10, 0x00, 0xFB, 0x00, 0x00};
    take_x25(tracker, about, {{30'000, 30'000}, true, true, octets_of(restart)}, 4);
    finish_x25(tracker, about);
}

/// Processor time that a thousand calls on one link take, each ended by a restart, beside calls that last on another.
double time_of_restarts(int lasting) {
    const auto packet = [](int channel, int type) {
        return std::vector<std::uint8_t>{static_cast<std::uint8_t>(0x10 | channel >> 8),
                                         static_cast<std::uint8_t>(channel), static_cast<std::uint8_t>(type), 0, 0};
    };
    trouble_list troubles;
    allowance shared;
    const journal about{&troubles, &shared, "test", {}, 0, true};
    x25_tracker tracker;
    for (int channel = 1; channel <= lasting; ++channel) {
        std::vector<std::uint8_t> call = packet(channel, X25_CALL);
        take_x25(tracker, about, {{1, 1}, true, true, octets_of(call)}, 65);
    }
    std::vector<std::uint8_t> call = packet(1, X25_CALL);
    std::vector<std::uint8_t> restart = packet(0, X25_RESTART);
    std::vector<std::uint8_t> confirmation = packet(0, X25_RESTART_CONFIRMATION);
    const std::clock_t begin = std::clock();
    for (int i = 0; i < 1000; ++i) {
        take_x25(tracker, about, {{2, 2}, true, true, octets_of(call)}, 66);
        take_x25(tracker, about, {{2, 3}, true, true, octets_of(restart)}, 66);
        take_x25(tracker, about, {{2, 4}, false, true, octets_of(confirmation)}, 66);
    }
    const std::clock_t end = std::clock();
    EXPECT_GE(tracker.calls.size(), static_cast<std::size_t>(lasting));
    return static_cast<double>(end - begin);
}

TEST(X25Tracker, ARestartDoesNotWalkThroughTheCallsOfOtherLinks) {
    double alone = time_of_restarts(0);
    double beside_many = time_of_restarts(4000);
    for (int round = 0; round < 4; ++round) {
        alone = std::min(alone, time_of_restarts(0));
        beside_many = std::min(beside_many, time_of_restarts(4000));
    }
    EXPECT_LT(beside_many, 8 * alone);  // a walk takes 40 times as long
}

TEST(X25Tracker, ARestartEndsEveryCallOfItsLinkAndNoOther) {
    trouble_list troubles;
    allowance shared;
    const journal about{&troubles, &shared, "test", {}, 0, true};
    x25_tracker tracker;
    for (const int link : {65, 66}) {
        for (const int channel : {1, 63, 64, 4095}) {
            std::vector<std::uint8_t> call = {static_cast<std::uint8_t>(0x10 | channel >> 8),
                                              static_cast<std::uint8_t>(channel), X25_CALL, 0, 0};
            take_x25(tracker, about, {{1, 1}, true, true, octets_of(call)}, link);
        }
    }
    std::vector<std::uint8_t> restart = {0x10, 0x00, X25_RESTART, 0, 0};
    take_x25(tracker, about, {{2, 2}, true, true, octets_of(restart)}, 65);
    for (const int channel : {1, 63, 64, 4095}) {
        EXPECT_EQ(tracker.calls.find({65, channel}), nullptr) << channel;
        EXPECT_NE(tracker.calls.find({66, channel}), nullptr) << channel;
    }
    EXPECT_EQ(tracker.restarts.find(65)->ended_calls, 4U);
}

}  // namespace
}  // namespace ifwatch::reporting
