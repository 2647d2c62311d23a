// What every tracker of the report stands on: bounds, folding, and texts that are fit for a page.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "base/print.h"
#include "display/channel_display.h"
#include "isdn/bearer_capability.h"
#include "isdn/high_layer.h"
#include "read/report/call_message.h"
#include "read/report/journal.h"
#include "read/report/page.h"
#include "read/report/remembered.h"
#include "read/report/report_run.h"
#include "read/report/seen.h"
#include "support/captured_output.h"

namespace ifwatch::reporting {
namespace {

struct entry {
    place first;
    int value = 0;
};

using memory = remembered<int, entry>;

TEST(Remembered, FindsWhatLastsAndKeepsWhatIsOver) {
    allowance shared;
    memory calls;
    calls.begin(7, shared, {{10, 1}, 1});
    calls.begin(8, shared, {{20, 2}, 2});
    ASSERT_NE(calls.find(7), nullptr);
    calls.finish(7);
    EXPECT_EQ(calls.find(7), nullptr);
    EXPECT_TRUE(calls.ended_lately(7));
    EXPECT_FALSE(calls.ended_lately(8));
    const auto all = calls.in_order();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0]->value, 1);
    EXPECT_EQ(all[1]->value, 2);
}

TEST(Remembered, AKeyThatBeginsAnewEndsTheFirst) {
    allowance shared;
    memory calls;
    calls.begin(7, shared, {{10, 1}, 1});
    calls.begin(7, shared, {{20, 2}, 2});
    EXPECT_EQ(calls.find(7)->value, 2);
    EXPECT_EQ(calls.size(), 2U);
}

TEST(Remembered, NeverHoldsMoreThanItsBoundAndGivesUpWhatIsOverFirst) {
    allowance shared{1U << 20};
    memory calls;
    const int most = static_cast<int>(allowance::MOST_OF_EACH);
    for (int i = 0; i < most; ++i) {
        calls.begin(i, shared, {{static_cast<std::uint32_t>(i), 0}, i});
    }
    calls.finish(100);
    calls.begin(most, shared, {{1'000'000, 0}, most});
    EXPECT_EQ(calls.size(), allowance::MOST_OF_EACH);
    EXPECT_EQ(calls.forgotten(), 1U);
    EXPECT_NE(calls.find(0), nullptr);
    EXPECT_TRUE(calls.ended_lately(100));                       // its key is still known
    calls.begin(most + 1, shared, {{1'000'001, 0}, most + 1});  // nothing is over any more: the oldest goes
    EXPECT_EQ(calls.size(), allowance::MOST_OF_EACH);
    EXPECT_EQ(calls.find(0), nullptr);
    EXPECT_NE(calls.find(1), nullptr);
}

TEST(Remembered, WhatHappenedMostStays) {
    struct counted {
        place first;
        int times = 1;
    };
    allowance shared{.of_each = 32};
    remembered<int, counted> pairs;
    for (int i = 0; i < 1000; ++i) {
        pairs.begin(i, shared, {{static_cast<std::uint32_t>(i), 0}, i % 100 == 0 ? 5 : 1});
    }
    EXPECT_EQ(pairs.size(), 32U);
    for (int i = 0; i < 1000; i += 100) {
        EXPECT_NE(pairs.find(i), nullptr) << i;
    }
    EXPECT_EQ(pairs.find(1), nullptr);
    EXPECT_NE(pairs.find(999), nullptr);
}

TEST(Remembered, SharesAnAllowance) {
    allowance shared{3};
    memory first;
    memory second;
    for (int i = 0; i < 10; ++i) {
        first.begin(i, shared, {});
        second.begin(i, shared, {});
    }
    EXPECT_EQ(shared.left, 0U);
    EXPECT_EQ(first.size() + second.size(), 3U);
    EXPECT_EQ(first.forgotten() + second.forgotten(), 17U);
}

std::string lines_of(const trouble_list& troubles) {
    captured_output captured;
    troubles.print_lines();
    return captured.take();
}

TEST(TroubleList, IsInTheOrderOfTimeAndFoldsTheSameWords) {
    trouble_list troubles;
    troubles.add({2000, 5}, "2101", "second");
    troubles.add({1000, 9}, "2100", "first");
    troubles.add({3000, 7}, "2101", "second");
    troubles.add({4000, 8}, "2102", "second");
    EXPECT_EQ(lines_of(troubles),
              "  1.000 #9 2100: first\n"
              "  2.000 #5 2101: second (2 times, the last at 3.000 #7)\n"
              "  4.000 #8 2102: second\n");
}

TEST(TroubleList, ShowsTenAndCountsTheRest) {
    trouble_list troubles;
    for (std::uint32_t i = 0; i < 1000; ++i) {
        troubles.add({10'000 - i, i}, "x", std::to_string(i));
    }
    const std::string lines = lines_of(troubles);
    EXPECT_EQ(lines.substr(0, lines.find('\n')), "  9.001 #999 x: 999");
    EXPECT_NE(lines.find("  and 990 more\n"), std::string::npos);
}

TEST(TroubleList, WordsOnlySoMany) {
    trouble_list troubles;
    const journal about{&troubles, nullptr, "2100", {}, 0, true};
    for (std::uint32_t i = 0; i < trouble_list::MOST_WORDED + 5; ++i) {
        tell_trouble<"the same">(about, {i, i});
    }
    tell_trouble<"new">(about, {20'000, 20'000});
    troubles.begin_end();
    tell_trouble<"at the end">(about, {5, 5});
    EXPECT_EQ(lines_of(troubles),
              "  0.000 #0 2100: the same (10000 times at least, the last at 9.999 #9999)\n"
              "  0.005 #5 2100: at the end\n"
              "  and 6 more\n");
}

TEST(Page, SaysTimesAsOneSaysThem) {
    EXPECT_EQ(duration_text(0), "0 ms");
    EXPECT_EQ(duration_text(999), "999 ms");
    EXPECT_EQ(duration_text(1000), "1.0 s");
    EXPECT_EQ(duration_text(299'999), "299.9 s");
    EXPECT_EQ(duration_text(300'000), "5 min 0 s");
    EXPECT_EQ(duration_text(7'199'999), "119 min 59 s");
    EXPECT_EQ(duration_text(7'800'000), "2 h 10 min");
    EXPECT_EQ(place_text({12'345, 17}), "12.345 #17");
    EXPECT_EQ(elapsed({5000, 1}, {4000, 2}), 0U);
}

TEST(Page, ForeignTextCannotActOrRunOn) {
    EXPECT_EQ(foreign_name("a\x1b[2J\n\x9b\x7f"), "a\\x1b[2J\\x0a\\x9b\\x7f");
    EXPECT_EQ(foreign_name(std::string(40, 'a')), std::string(40, 'a'));
    EXPECT_EQ(foreign_name(std::string(41, 'a')), std::string(40, 'a') + "...");
    EXPECT_EQ(foreign_name(std::string(5000, '\x01')).size(), 4 * 40 + 3U);
}

TEST(TroubleList, BreaksALongLine) {
    trouble_list troubles;
    troubles.add({1000, 1}, "2100", std::string(60, 'a') + " " + std::string(40, 'b') + " c");
    EXPECT_EQ(lines_of(troubles),
              "  1.000 #1 2100: " + std::string(60, 'a') + "\n      " + std::string(40, 'b') + " c\n");
}

TEST(Page, ShortTextKeepsItsFirstOctetsAndTellsThatThereWereMore) {
    std::vector<std::uint8_t> digits(30, '7');
    short_text text;
    text.append(octets_of(digits).cut(24));
    short_text twice = text;
    text_buffer<128> exact;
    text.put_to(exact);
    EXPECT_EQ(exact.text(), std::string(24, '7'));
    twice.append(text);
    text_buffer<128> cut;
    twice.put_to(cut);
    EXPECT_EQ(cut.text(), std::string(24, '7') + "...");
}

TEST(Page, BreaksALongRowBetweenItsWords) {
    section rows;
    captured_output captured;
    print_row_text(rows, {1000, 1}, std::string(60, 'a') + " " + std::string(30, 'b') + " c");
    EXPECT_EQ(captured.take(), "  1.000 #1         " + std::string(60, 'a') + "\n" + std::string(19, ' ') +
                                   std::string(30, 'b') + " c\n");
}

TEST(Page, BreaksARowOfOneLongWord) {
    section rows;
    captured_output captured;
    print_row_text(rows, {1000, 1}, std::string(81, 'a'));
    EXPECT_EQ(captured.take(), "  1.000 #1         " + std::string(80, 'a') + "\n" + std::string(19, ' ') + "a\n");
}

TEST(Page, ASectionHasOnlySoManyRows) {
    section rows;
    captured_output captured;
    for (int i = 0; i < section::MOST_ROWS + 5; ++i) {
        print_row<"row">(rows, {});
    }
    end_section(rows);
    EXPECT_NE(captured.take().find("  and 5 more\n"), std::string::npos);
}

TEST(Seen, CountsWhatTheSequenceNumbersMiss) {
    seen_counts seen;
    for (const std::uint32_t number : {7U, 8U, 12U, 3U, 4U, 0xFFFFFFFFU, 0U}) {
        count_record(seen, {number, number});
    }
    EXPECT_EQ(seen.lost, 3U);  // a number that jumps back, or to the other end, tells of no loss
    EXPECT_EQ(seen.records, 7U);
}

call_message message_of(std::vector<std::uint8_t> octets_of_message) {
    return read_call_message(octets_of(octets_of_message));
}

std::string text_of(const short_text& text) {
    text_buffer<128> shown;
    text.put_to(shown);
    return std::string(shown.text());
}

TEST(CallMessage, KnowsTheCallAndTheSide) {
    const call_message message = message_of({0x08, 0x01, 0x87, 0x45, 0x08, 0x02, 0x82, 0x81});
    EXPECT_TRUE(message.of_call);
    EXPECT_EQ(message.reference, 7);
    EXPECT_TRUE(message.from_destination);
    EXPECT_EQ(message.type, MESSAGE_DISCONNECT);
    EXPECT_EQ(message.cause, 0x81);
    EXPECT_EQ(message.location, 2);
}

TEST(CallMessage, TheDummyAndTheGlobalCallReferenceAreOfNoCall) {
    EXPECT_FALSE(message_of({0x08, 0x00, 0x05}).of_call);
    EXPECT_FALSE(message_of({0x08, 0x01, 0x80, 0x46}).of_call);
    EXPECT_FALSE(message_of({0x0F, 0x01, 0x07, 0x05}).of_call);
    EXPECT_FALSE(message_of({0x08, 0x0F, 0x07, 0x05}).of_call);  // cut off
}

TEST(CallMessage, ReadsElementsOfTheFirstCodesetOnly) {
    // A non-locking shift hides one element, a locking one the rest.
    const call_message message = message_of(
        {0x08, 0x01, 0x07, 0x05, 0x9E, 0x70, 0x02, 0x80, 0x31, 0x70, 0x02, 0x80, 0x32, 0x96, 0x70, 0x02, 0x80, 0x33});
    EXPECT_EQ(text_of(message.called), "2");
}

TEST(CallMessage, ReadsChannelsOfBothKindsOfInterface) {
    EXPECT_EQ(message_of({0x08, 0x01, 0x07, 0x02, 0x18, 0x01, 0x8A}).channel, 2);
    EXPECT_EQ(message_of({0x08, 0x01, 0x07, 0x02, 0x18, 0x01, 0x83}).channel, NO_CHANNEL);
    EXPECT_EQ(message_of({0x08, 0x02, 0x00, 0x07, 0x02, 0x18, 0x03, 0xA9, 0x83, 0x91}).channel, 17);
    EXPECT_EQ(message_of({0x08, 0x02, 0x00, 0x07, 0x02, 0x18, 0x04, 0xE9, 0x81, 0x83, 0x91}).channel, 17);
    EXPECT_EQ(message_of({0x08, 0x02, 0x00, 0x07, 0x02, 0x18, 0x03, 0xA9, 0x93, 0x91}).channel, NO_CHANNEL);  // a map
}

TEST(CallMessage, ReadsWhatARestartIndicates) {
    EXPECT_EQ(message_of({0x08, 0x01, 0x00, 0x46, 0x18, 0x01, 0x8A, 0x79, 0x01, 0x80}).restarted, 1U << 2);
    EXPECT_EQ(message_of({0x08, 0x02, 0x80, 0x00, 0x4E, 0x18, 0x05, 0xA9, 0x83, 0x05, 0x91, 0xA0, 0x79, 0x01, 0x80})
                  .restarted,
              1U << 5 | 1U << 17);  // and one that no interface has
    EXPECT_EQ(message_of({0x08, 0x02, 0x00, 0x00, 0x46, 0x79, 0x01, 0x86}).restarted, ALL_CHANNELS);
    EXPECT_EQ(message_of({0x08, 0x02, 0x00, 0x00, 0x46, 0x18, 0x03, 0xA9, 0x93, 0x91}).restarted, 0U);  // a map
    EXPECT_EQ(message_of({0x08, 0x01, 0x00, 0x07, 0x18, 0x01, 0x8A}).restarted, 0U);                    // no RESTART
}

TEST(CallMessage, AnElementThatIsLongerThanTheRestEndsIt) {
    EXPECT_EQ(text_of(message_of({0x08, 0x01, 0x07, 0x05, 0x70, 0x09, 0x80, 0x31}).called), "");
}

TEST(IsdnWords, OfBearerAndCompatibilityElements) {
    std::array<std::uint8_t, 6> low_layer{0x7C, 0x04, 0x88, 0x90, 0xC6, 0xE6};
    EXPECT_EQ(layer2_protocol_name(octets_of(low_layer)).view(), "X.25 , link layer ");
    EXPECT_EQ(information_capability_name(octets_of(low_layer)).view(), "unrestrict. digital info");
    low_layer[3] = 0xC0;  // packet mode, which has the bits of layer 2
    EXPECT_EQ(layer2_protocol_name(octets_of(low_layer)).view(), "X.25 , link layer ");
    std::array<std::uint8_t, 4> bearer{0x04, 0x02, 0x88, 0x90};
    EXPECT_FALSE(layer2_protocol_name(octets_of(bearer)));
    EXPECT_FALSE(information_capability_name(octets_of(bearer).cut(2))) << "an element without contents";
    std::array<std::uint8_t, 4> high_layer{0x7D, 0x02, 0x91, 0x81};
    EXPECT_EQ(high_layer_name(octets_of(high_layer)).view(), "Telephony");
}

/// A report that frames are handed to, one after the other, of an interface that exists.
struct fed_report {
    explicit fed_report(std::size_t most_of_each = allowance::MOST_OF_EACH) : report(most_of_each) {}

    report_run report;
    display_context context;
    record_header header;

    void take(std::size_t line, std::vector<std::uint8_t> data, bool sent = true) {
        ++header.sequence;
        header.timestamp_ms += 10;
        header.record_flags = (header.record_flags & ~RECORD_SENT) | (sent ? RECORD_SENT : 0);
        context.header = &header;
        context.payload = octets_of(data);
        context.original_length = static_cast<std::uint32_t>(data.size());
        report.take(line, context);
        context.header = nullptr;
    }

    [[nodiscard]] std::string page() {
        captured_output captured;
        report.print();
        return captured.take();
    }
};

/// SETUP of a call with a reference of two octets.
std::vector<std::uint8_t> setup(std::uint32_t reference) {
    return {0x00,
            0x81,
            0x00,
            0x00,
            0x08,
            0x02,
            static_cast<std::uint8_t>(reference >> 8 & 0x7F),
            static_cast<std::uint8_t>(reference),
            0x05,
            0x04,
            0x02,
            0x88,
            0x90,
            0x70,
            0x03,
            0x80,
            0x31,
            0x32};
}

/// A LAN frame of 54 octets with a SYN, from a port and to an address of its own.
std::vector<std::uint8_t> syn(std::uint32_t number) {
    std::vector<std::uint8_t> data(54);
    data[12] = 0x08;
    data[14] = 0x45;
    data[23] = 6;
    data[26] = 10;
    data[30] = 192;
    data[32] = static_cast<std::uint8_t>(number >> 8);
    data[33] = static_cast<std::uint8_t>(number);
    data[46] = 0x50;
    data[47] = 0x02;
    return data;
}

TEST(ReportRun, AFloodOfCallsMakesADullPage) {
    fed_report fed;
    const std::size_t line = fed.report.begin_interface("2100", 0, 0);
    for (std::uint32_t i = 1; i <= 20'000; ++i) {
        fed.take(line, setup(i));
    }
    const std::string page = fed.page();
    EXPECT_LT(page.size(), 4096U);
    EXPECT_NE(page.find("20000 calls, 0 of them connected"), std::string::npos) << page;
}

TEST(ReportRun, NoTrackerRemembersMoreThanItIsAllowedTo) {
    fed_report fed(4);
    const std::size_t line = fed.report.begin_interface("2100", 0, 0);
    const std::size_t lan = fed.report.begin_interface("1000", 6, 0);
    for (std::uint32_t i = 1; i <= 30; ++i) {
        fed.take(line, setup(i));
        EXPECT_EQ(fed.report.most_remembered(), std::min(i, 4U));
    }
    for (std::uint32_t i = 0; i < 30; ++i) {
        fed.take(lan, syn(i));
        EXPECT_EQ(fed.report.most_remembered(), 4U);
    }
    const std::string page = fed.page();
    EXPECT_NE(page.find("30 calls, 0 of them connected"), std::string::npos) << page;
    EXPECT_NE(page.find("and 26 more"), std::string::npos) << page;
    EXPECT_NE(page.find("30 TCP connections asked for"), std::string::npos) << page;
}

/// On a leased line with PPP: the page never shows what stood behind the name of a login.
TEST(ReportRun, APasswordIsNeverOnThePage) {
    for (const std::uint8_t name_length : {std::uint8_t{2}, std::uint8_t{5}, std::uint8_t{200}}) {
        fed_report fed;
        const std::size_t line = fed.report.begin_interface("8300", 23, 0);
        fed.take(line, {0xFF, 0x03, 0xC0, 0x23, 1, 1, 0, 13, name_length, 'm', 'e', 5, 'S', 'E', 'C', 'R', 'T', 0});
        fed.take(line, {0xFF, 0x03, 0xC0, 0x23, 3, 1, 0, 8, 3, 'b', 'a', 'd'}, false);
        const std::string page = fed.page();
        EXPECT_NE(page.find("the peer refused the login of"), std::string::npos) << page;
        EXPECT_NE(page.find("(PAP: 'bad')"), std::string::npos) << page;
        EXPECT_EQ(page.find("SE"), std::string::npos) << page;
        EXPECT_EQ(page.find("'me'") != std::string::npos, name_length == 2) << page;
    }
}

TEST(ReportRun, AFloodOfSynsMakesADullPage) {
    fed_report fed;
    const std::size_t line = fed.report.begin_interface("1000", 6, 0);
    for (std::uint32_t i = 0; i < 20'000; ++i) {
        fed.take(line, syn(i));
    }
    const std::string page = fed.page();
    EXPECT_LT(page.size(), 4096U);
    EXPECT_NE(page.find("20000 TCP connections asked for, 0 answered"), std::string::npos) << page;
}

TEST(ReportRun, CellsOfCircuitsBeyondTheBoundAreOnlyCounted) {
    fed_report fed;
    const std::size_t line = fed.report.begin_interface("6000", 3, 0);
    fed.header.record_flags = RECORD_CELL_HEADER;
    for (std::size_t i = 0; i < cell_tracker::MOST_CIRCUITS + 3; ++i) {
        // VCI i, PTI 5: a cell from end to end, with a continuity check in it
        fed.take(line, {0x0A, static_cast<std::uint8_t>(i << 4), static_cast<std::uint8_t>(i >> 4), 0x00, 0x14}, false);
    }
    const std::string page = fed.page();
    EXPECT_NE(page.find("  and 3 cells of further circuits\n"), std::string::npos) << page;
}

TEST(ReportRun, InterfacesBeyondItsBoundAreOnlyCounted) {
    fed_report fed;
    for (std::size_t i = 0; i < report_run::MOST_INTERFACES + 50; ++i) {
        fed.take(fed.report.begin_interface(std::to_string(i), 0, 0), setup(1));
    }
    const std::string page = fed.page();
    EXPECT_LT(page.size(), 32768U);
    EXPECT_NE(page.find("50 records of further interfaces, which were not looked at"), std::string::npos);
}

TEST(ReportRun, AnInterfaceOfTheSameRouterGoesOn) {
    report_run report;
    const std::size_t first = report.begin_interface("2100", 0, 0, "router");
    EXPECT_EQ(report.begin_interface("2100", 0, 0, "router"), first);
    EXPECT_NE(report.begin_interface("2100", 0, 0, "another"), first);
    EXPECT_NE(report.begin_interface("2101", 1, 0, "router"), first);
    EXPECT_NE(report.begin_interface("2100", 0, 0), first);  // of whom nothing is known
}

TEST(ReportRun, WhatWasLookedAtIsBrokenAsEverythingElse) {
    fed_report fed;
    for (const int type : {0, 6, 16, 23}) {
        fed.take(fed.report.begin_interface("", type, 0), {0xFF, 0x03, 0x80, 0x21, 0x0A, 0x01, 0x00, 0x04, 0x00, 0x00,
                                                           0x00, 0x00, 0x08, 0x00, 0x45, 0x00, 0x00});
    }
    const std::string page = fed.page();
    EXPECT_NE(
        page.find("\nTrouble\n"
                  "  None. Looked at: TEIs, data links and calls, PPP negotiation and logins, LAPB links and X.25\n"
                  "      calls, ARP, TCP connections and ICMP refusals.\n\n"),
        std::string::npos)
        << page;
}

TEST(ReportRun, WithoutDirectionsTheRouterIsNotNamed) {
    fed_report fed;
    const std::size_t line = fed.report.begin_interface("", 0, 0);
    fed.take(line, setup(7), false);
    fed.take(line, {0x02, 0x81, 0x00, 0x00, 0x08, 0x02, 0x80, 0x07, 0x5A, 0x08, 0x02, 0x82, 0x81}, false);
    const std::string page = fed.page();
    EXPECT_NE(page.find("ISDN D-channel: the call to 12 was refused by the called side:"), std::string::npos) << page;
    EXPECT_EQ(page.find("router"), std::string::npos) << page;
}

}  // namespace
}  // namespace ifwatch::reporting
