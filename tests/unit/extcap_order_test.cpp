// The time line of a capture: the router's clock, the octets of a session, and records of several sessions in order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/byte_order.h"
#include "base/print.h"
#include "cases/record_source.h"
#include "extcap/record_inbox.h"
#include "extcap/router_clock.h"
#include "extcap/time_order.h"
#include "trace/element.h"

namespace ifwatch::extcap {
namespace {

using testing::ElementsAre;

using found = record_inbox::found;
using octet_vector = std::vector<std::uint8_t>;

constexpr std::int64_t WALL = 1'700'000'000'000;

/// One interface on a router's clock.
struct clocked {
    router_clock& clock;
    router_clock::follower who{};
    router_clock::moment moment{};

    std::uint64_t at(std::uint32_t stamp, std::int64_t after_ms = 0, bool behind_gap = false) {
        moment = clock.at(who, stamp, {WALL + after_ms, 77 + after_ms, behind_gap});
        return clock.time_of(moment.order);
    }
};

TEST(router_clock, begins_with_the_wall_clock) {
    router_clock clock(false);
    clocked one{clock};
    EXPECT_EQ(one.at(5000), WALL);
    EXPECT_EQ(one.at(5250), WALL + 250U);
    EXPECT_EQ(one.at(5240), WALL + 240U) << "a record out of order";
}

TEST(router_clock, or_stays_the_routers) {
    router_clock clock(true);
    clocked one{clock};
    EXPECT_EQ(one.at(5000), 5000U);
    EXPECT_EQ(one.at(5250), 5250U);
    EXPECT_EQ(one.at(4900), 4900U) << "from before the first";
}

TEST(router_clock, goes_on_when_its_count_begins_anew) {
    router_clock clock(true);
    clocked one{clock};
    clocked other{clock};
    EXPECT_EQ(one.at(0xFFFFFFF0), 0xFFFFFFF0U);
    EXPECT_EQ(one.at(0x00000010), 0x100000010U);
    EXPECT_FALSE(one.moment.restarted);
    EXPECT_EQ(other.at(0xFFFFFFF8), 0xFFFFFFF8U) << "the others' line";
}

TEST(router_clock, is_one_for_all_interfaces) {
    router_clock clock(false);
    clocked one{clock};
    clocked other{clock};
    EXPECT_EQ(one.at(5000), WALL);
    EXPECT_EQ(other.at(4000, 900), WALL - 1000U);
    EXPECT_LT(other.moment.order, one.moment.order);
    EXPECT_EQ(other.at(6000, 950), WALL + 1000U);
    EXPECT_GT(other.moment.order, one.moment.order);
}

TEST(router_clock, begins_anew_when_the_router_did_and_its_order_goes_on) {
    router_clock clock(false);
    clocked one{clock};
    clocked other{clock};
    one.at(500'000);
    other.at(500'000);
    const std::uint64_t before = one.moment.order;
    EXPECT_EQ(one.at(489'999, 1000), WALL + 1000U) << "more than ten seconds back";
    EXPECT_TRUE(one.moment.restarted);
    EXPECT_GT(one.moment.order, before);
    EXPECT_EQ(one.at(490'009, 2000), WALL + 1010U);
    EXPECT_FALSE(one.moment.restarted);
    EXPECT_EQ(other.at(500'001), WALL + 1U) << "not noticed there yet";
    EXPECT_EQ(other.at(480'000, 3000), WALL + 1000U - 9999) << "the same start of the clock";
    EXPECT_TRUE(other.moment.restarted);
}

TEST(router_clock, goes_on_behind_a_gap) {
    router_clock clock(false);
    clocked one{clock};
    one.at(500'000);
    EXPECT_EQ(one.at(560'000, 60'100, true), WALL + 60'000U);
    EXPECT_FALSE(one.moment.restarted);
    EXPECT_EQ(one.at(604'800'000 + 500'000, 604'900'000, true), WALL + 604'800'000U) << "a week, and some drift";
    EXPECT_FALSE(one.moment.restarted);
}

TEST(router_clock, behind_a_gap_tells_a_restart_by_what_has_passed) {
    router_clock clock(false);
    clocked one{clock};
    clocked other{clock};
    one.at(10'000);
    other.at(10'000);
    EXPECT_EQ(one.at(30'000, 120'000, true), WALL + 120'000U) << "20 s for 120 s";
    EXPECT_TRUE(one.moment.restarted);
    EXPECT_EQ(other.at(30'200, 120'300, true), WALL + 120'200U) << "with the one that came first";
    EXPECT_TRUE(other.moment.restarted);
    EXPECT_EQ(one.at(30'000, 121'000, true), WALL + 121'000U) << "no later than its last record";
    EXPECT_TRUE(one.moment.restarted);
}

TEST(router_clock, has_a_place_for_a_first_record_of_the_clock_that_another_saw_begin_anew) {
    router_clock clock(true);
    clocked one{clock};
    clocked other{clock};
    one.at(500'000);
    one.at(0, 100);
    EXPECT_EQ(other.at(500'050, 110), 500'050U);
    EXPECT_FALSE(other.moment.restarted);
    EXPECT_LT(other.moment.order, one.moment.order);
    EXPECT_EQ(other.at(60, 160), 60U);
    EXPECT_TRUE(other.moment.restarted);
    EXPECT_GT(other.moment.order, one.moment.order) << "the start that is known already";
    clocked late{clock};
    EXPECT_EQ(late.at(90, 190), 90U);
    EXPECT_FALSE(late.moment.restarted);
}

octet_vector record_of(std::uint32_t timestamp, std::size_t length = 3) {
    octet_vector octets;
    cases::append_record(
        octets, {timestamp, 0, 0, timestamp, static_cast<std::uint16_t>(length), octet_vector(length, 0xAA)}, -1);
    return octets;
}

/// What a session's messages say.
std::string& told() {
    static std::string text;
    return text;
}

class extcap_inbox : public testing::Test {
protected:
    record_inbox inbox;

    void SetUp() override {
        told().clear();
        set_report_writer([](std::string_view text) { told() += text; });
        inbox.open();
    }
    void TearDown() override { set_report_writer(nullptr); }

    void arrives(std::span<const std::uint8_t> octets) {
        const auto room = inbox.room();
        ASSERT_LE(octets.size(), room.size());
        std::ranges::copy(octets, room.begin());
        inbox.filled(octets.size());
    }
    found next(octet_vector* record = nullptr) {
        std::span<std::uint8_t> octets;
        const found got = inbox.next(octets);
        if (record != nullptr) {
            record->assign(octets.begin(), octets.end());
        }
        return got;
    }
};

TEST_F(extcap_inbox, gives_records_when_they_are_whole) {
    const octet_vector record = record_of(1, 5);
    octet_vector got;
    for (std::size_t i = 0; i + 1 < record.size(); ++i) {
        arrives({&record[i], 1});
        ASSERT_EQ(next(), found::PART) << i;
    }
    arrives({&record.back(), 1});
    EXPECT_EQ(next(&got), found::RECORD);
    EXPECT_EQ(got, record);
    EXPECT_EQ(next(), found::PART);
}

TEST_F(extcap_inbox, ends_as_a_stream_ends) {
    EXPECT_EQ(inbox.tell_end(0), record_read::END);
    EXPECT_EQ(inbox.tell_end(-1), record_read::BROKEN);
    const octet_vector record = record_of(1, 5);
    arrives(std::span(record).first(21));
    EXPECT_EQ(inbox.tell_end(0), record_read::BROKEN);
    arrives(std::span(record).subspan(21, 3));
    EXPECT_EQ(inbox.tell_end(0), record_read::BROKEN);
    EXPECT_EQ(told(),
              "trc hdr too short! = 0<22\ntrc hdr too short! = -1<22\ntrc hdr too short! = 0<22\n"
              "data too short! 0<5\n");
}

TEST_F(extcap_inbox, refuses_lengths_that_cannot_be) {
    octet_vector record = record_of(1);
    record[1] = 21;
    arrives(record);
    EXPECT_EQ(next(), found::BROKEN);
    record[0] = 0x20;  // 22 + 8193
    record[1] = 0x17;
    inbox.open();
    arrives(record);
    EXPECT_EQ(next(), found::BROKEN);
    EXPECT_EQ(told(), "data too short! 0<-1\ndata too short! 0<8193\n");
}

TEST_F(extcap_inbox, keeps_what_waits_while_more_arrives) {
    std::vector<std::uint64_t> left;
    std::uint32_t given = 0;
    for (std::uint32_t number = 1; number <= 5000; ++number) {
        while (!inbox.has_room()) {
            EXPECT_EQ(inbox.first_octets()[21], 97);
            left.push_back(inbox.first().order);
            inbox.drop_first();
        }
        arrives(record_of(number, 97));
        ASSERT_EQ(next(), found::RECORD);
        ++given;
        inbox.keep({.order = number});
    }
    while (!inbox.empty()) {
        left.push_back(inbox.first().order);
        inbox.drop_first();
    }
    EXPECT_EQ(left.size(), given);
    EXPECT_TRUE(std::ranges::is_sorted(left));
}

TEST_F(extcap_inbox, holds_the_longest_record_whatever_waits) {
    const octet_vector longest = record_of(7, 8192);
    octet_vector got;
    for (int i = 0; i < 20; ++i) {
        arrives(record_of(1, 1000 + static_cast<std::size_t>(i) * 100));
        ASSERT_EQ(next(), found::RECORD);
        inbox.keep({.order = 1});
        while (!inbox.has_room()) {
            inbox.drop_first();
        }
        arrives(longest);
        ASSERT_EQ(next(&got), found::RECORD);
        EXPECT_EQ(got, longest);
        while (!inbox.has_room()) {
            inbox.drop_first();
        }
    }
}

TEST_F(extcap_inbox, has_its_room_back_when_what_was_out_of_order_has_left) {
    for (const std::uint32_t number : {3U, 2U, 4U, 5U}) {
        arrives(record_of(number, 8000));
        ASSERT_EQ(next(), found::RECORD);
        inbox.keep({.order = number});
    }
    EXPECT_FALSE(inbox.has_room());
    inbox.drop_first();
    EXPECT_FALSE(inbox.has_room()) << "the octets of the first are still needed";
    EXPECT_EQ(load_be32(&inbox.first_octets()[4]), 3U);
    inbox.drop_first();
    EXPECT_TRUE(inbox.has_ample_room());
    arrives(record_of(6, 8000));
    for (const std::uint32_t number : {4U, 5U}) {
        EXPECT_EQ(load_be32(&inbox.first_octets()[4]), number);
        inbox.drop_first();
    }
}

/// Sessions whose records are named by their order.
class extcap_order : public testing::Test {
protected:
    record_inbox inboxes[3];
    time_order order;
    std::vector<std::uint64_t> written;

    void SetUp() override {
        for (record_inbox& inbox : inboxes) {
            inbox.open();
        }
    }

    void arrives(std::size_t session, std::uint64_t number, std::int64_t now) {
        record_inbox& inbox = inboxes[session];
        const octet_vector octets = record_of(static_cast<std::uint32_t>(number));
        std::ranges::copy(octets, inbox.room().begin());
        inbox.filled(octets.size());
        std::span<std::uint8_t> record;
        ASSERT_EQ(inbox.next(record), found::RECORD);
        order.add(inbox, {.order = number}, now);
    }
    void write_overdue(std::int64_t now) {
        while (order.overdue(now)) {
            write_next();
        }
    }
    void write_next() {
        const record_inbox& inbox = order.next();
        EXPECT_EQ(inbox.first_octets()[7], inbox.first().order) << "the octets are another record's";
        written.push_back(inbox.first().order);
        order.drop_next();
    }
    void write_all() {
        while (!order.empty()) {
            write_next();
        }
    }
};

TEST_F(extcap_order, is_that_of_the_clock) {
    arrives(0, 30, 1000);
    arrives(1, 10, 1000);
    arrives(2, 20, 1001);
    arrives(1, 25, 1002);
    arrives(0, 5, 1003);
    write_all();
    EXPECT_THAT(written, ElementsAre(5, 10, 20, 25, 30));
    EXPECT_EQ(order.until_due(2000), -1);
}

TEST_F(extcap_order, holds_a_record_for_the_window_and_no_longer) {
    arrives(0, 30, 1000);
    EXPECT_EQ(order.until_due(1000), 50);
    EXPECT_EQ(order.until_due(1049), 1);
    EXPECT_FALSE(order.overdue(1049));
    EXPECT_EQ(order.until_due(1050), 0);
    EXPECT_TRUE(order.overdue(1050));
    EXPECT_EQ(order.until_due(9999), 0);
}

TEST_F(extcap_order, what_is_overdue_leaves_behind_those_before_it) {
    arrives(0, 30, 1000);
    arrives(1, 40, 1010);
    arrives(2, 20, 1020);
    arrives(0, 35, 1030);
    write_overdue(1050);
    EXPECT_THAT(written, ElementsAre(20, 30));
    EXPECT_EQ(order.until_due(1050), 10);
    arrives(1, 10, 1050);
    write_overdue(1060);
    EXPECT_THAT(written, ElementsAre(20, 30, 10, 35, 40)) << "10 came too late";
    EXPECT_TRUE(order.empty());
}

TEST_F(extcap_order, of_many_is_sorted_whenever_they_came) {
    std::uint64_t number = 1;
    for (std::int64_t now = 1000; now < 1040; ++now) {
        for (int i = 0; i < 6; ++i) {
            number = number * 37 % 251;
            arrives(static_cast<std::size_t>(number % 3), number, now);
        }
    }
    write_all();
    EXPECT_EQ(written.size(), 240U);
    EXPECT_TRUE(std::ranges::is_sorted(written));
}

}  // namespace
}  // namespace ifwatch::extcap
