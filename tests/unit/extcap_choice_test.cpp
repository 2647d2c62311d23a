// Which interfaces of a router are captured, and what its B-channels carry.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "extcap/bchannel_kinds.h"
#include "extcap/interface_choice.h"

namespace ifwatch::extcap {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<listed_interface> ROUTER = {
    {1000, 6}, {2100, 0},  {2101, 1},     {2102, 1},   {2200, 0},   {2201, 1},
    {3000, 3}, {3100, 23}, {100001, 131}, {100002, 5}, {200100, 0}, {201500, 6},
};

struct resolved {
    std::vector<std::int32_t> indexes;
    std::vector<std::string> unknown;

    explicit resolved(const std::string& text) {
        const auto choice = parse_interface_choice(text);
        EXPECT_TRUE(choice) << text;
        if (choice) {
            EXPECT_EQ(choice->text(), text);
            indexes = resolve_choice(*choice, ROUTER, unknown);
        }
    }
};

TEST(interface_choice, indexes_are_taken_as_they_are) {
    EXPECT_THAT(resolved("2102,2100,77").indexes, ElementsAre(2102, 2100, 77));
    EXPECT_THAT(resolved("2102,2100,77").unknown, IsEmpty());
    EXPECT_FALSE(parse_interface_choice("2102,77")->needs_list());
    EXPECT_THAT(resolved("2147483647").indexes, ElementsAre(2147483647));
}

TEST(interface_choice, a_range_is_what_the_router_has_of_it) {
    EXPECT_THAT(resolved("2101-3000").indexes, ElementsAre(2101, 2102, 2200, 2201, 3000));
    EXPECT_THAT(resolved("2100-2100").indexes, ElementsAre(2100));
    EXPECT_TRUE(parse_interface_choice("1,2101-3000")->needs_list());
}

TEST(interface_choice, a_line_is_its_channels) {
    EXPECT_THAT(resolved("line:2100").indexes, ElementsAre(2100, 2101, 2102));
    EXPECT_THAT(resolved("line:2102").indexes, ElementsAre(2100, 2101, 2102)) << "by any of them";
    EXPECT_THAT(resolved("line:3000").indexes, ElementsAre(3000));
    EXPECT_THAT(resolved("line:100001").indexes, ElementsAre(100001)) << "virtual ones have no line";
    EXPECT_THAT(resolved("line:201500").indexes, ElementsAre(201500)) << "units of two digits";
}

TEST(interface_choice, a_slot_is_all_of_its_lines) {
    EXPECT_THAT(resolved("slot:2").indexes, ElementsAre(2100, 2101, 2102, 2200, 2201));
    EXPECT_THAT(resolved("slot:200").indexes, ElementsAre(200100, 201500));
    EXPECT_THAT(resolved("slot:0").unknown, ElementsAre("slot:0")) << "where virtual ones are not";
}

TEST(interface_choice, all_is_the_whole_list) { EXPECT_EQ(resolved("all").indexes.size(), ROUTER.size()); }

TEST(interface_choice, each_is_traced_once_and_what_is_not_there_is_told) {
    const resolved got("2101,line:2100,slot:9,2000-2099,2100");
    EXPECT_THAT(got.indexes, ElementsAre(2101, 2100, 2102));
    EXPECT_THAT(got.unknown, ElementsAre("slot:9", "2000-2099"));
}

TEST(interface_choice, other_words_are_none) {
    for (const char* text : {"",       ",",       "2100,",    ",2100", "2100,,2101", " 2100",      "2100 ",  "0x10",
                             "-1",     "1-",      "-",        "2-1",   "1-2-3",      "2147483648", "line",   "line:",
                             "line:x", "line:-1", "slot:1-2", "slot:", "ALL",        "all:1",      "lines:1"}) {
        EXPECT_FALSE(parse_interface_choice(text)) << text;
    }
}

TEST(interface_choice, offers_interfaces_then_lines_slots_and_all) {
    const std::vector<listed_interface> router = {{1000, 6},  {2100, 0}, {2101, 1}, {2102, 1},
                                                  {2200, -2}, {3000, 3}, {3001, 3}, {100001, 131}};
    std::vector<std::string> offered;
    for (const offered_choice& one : offer_choices(router)) {
        offered.push_back(one.value + " = " + one.title);
    }
    EXPECT_THAT(offered,
                ElementsAre("1000 = 1000 LAN", "2100 = 2100 ISDN D-channel", "2101 = 2101 ISDN B-channel",
                            "2102 = 2102 ISDN B-channel", "2200 = 2200 PABX", "3000 = 3000 ATM", "3001 = 3001 ATM",
                            "100001 = 100001 Tunnel", "line:2100 = Line 2100: ISDN D-channel and 2 B-channels",
                            "line:3000 = Line 3000: 2 interfaces", "slot:2 = Slot 2: 4 interfaces",
                            "slot:3 = Slot 3: 2 interfaces", "all = The whole router: 8 interfaces"));
    EXPECT_THAT(offer_choices({}), IsEmpty());
    EXPECT_EQ(offer_choices(std::span(router).first(1)).size(), 1U);
}

TEST(bchannel_choice, has_a_kind_for_all_and_for_one) {
    const auto choice = parse_bchannel_choice("lapb,2102=ip,2103=raw");
    ASSERT_TRUE(choice);
    EXPECT_STREQ(choice->of(2101).word, "lapb");
    EXPECT_STREQ(choice->of(2102).word, "ip");
    EXPECT_STREQ(choice->of(2103).word, "raw");
    const auto exception = parse_bchannel_choice("2102=lapb");
    ASSERT_TRUE(exception);
    EXPECT_STREQ(exception->of(2101).word, "ppp");
    EXPECT_STREQ(exception->of(2102).word, "lapb");
}

TEST(bchannel_choice, other_words_are_none) {
    for (const char* text : {"", "ppp,", "ppp,lapb", "2102", "2102=", "=lapb", "2102=x", "-1=ppp", "2102=ppp=lapb",
                             "2102=lapb,2102=raw", "ppp,2102=lapb,2101=ip,2102=lapb"}) {
        EXPECT_FALSE(parse_bchannel_choice(text)) << text;
    }
}

}  // namespace
}  // namespace ifwatch::extcap
