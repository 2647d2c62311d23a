#include "ppp/option_walk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "support/captured_output.h"

namespace ifwatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

std::vector<std::pair<int, int>>& walked() {
    static std::vector<std::pair<int, int>> options;
    return options;
}

void keep(ppp_option& option) { walked().emplace_back(option.type, option.length); }

void keep_and_stay(ppp_option& option) {
    keep(option);
    option.passed = 0;
}

/// The types and lengths that a walk over `octets_given` comes upon; what it prints stands in `printed`.
std::vector<std::pair<int, int>> walk(octets options, std::string& printed, option_printer printer = keep) {
    walked().clear();
    captured_output output;
    walk_options(options, printer);
    printed = output.take();
    return walked();
}

std::vector<std::pair<int, int>> walk(std::vector<std::uint8_t> options, std::string& printed,
                                      option_printer printer = keep) {
    return walk(octets_of(options), printed, printer);
}

TEST(walk_options, moves_by_the_length_of_each) {
    std::string printed;
    EXPECT_THAT(walk({1, 4, 5, 220, 7, 2, 5, 6, 1, 2, 3, 4}, printed), ElementsAre(Pair(1, 4), Pair(7, 2), Pair(5, 6)));
    EXPECT_EQ(printed, "");
}

TEST(walk_options, ends_at_a_length_below_two) {
    std::string printed;
    EXPECT_THAT(walk({7, 2, 8, 0, 7, 2}, printed), ElementsAre(Pair(7, 2)));
    EXPECT_EQ(printed, "\t\tinvalid length 0!\n");
    EXPECT_THAT(walk({8, 1, 7, 2}, printed), IsEmpty());
    EXPECT_EQ(printed, "\t\tinvalid length 1!\n");
}

TEST(walk_options, counts_the_length_from_the_type_octet) {
    std::string printed;
    EXPECT_THAT(walk({5, 4, 1, 2}, printed), ElementsAre(Pair(5, 4)));
    EXPECT_EQ(printed, "");
    EXPECT_THAT(walk({5, 5, 1, 2}, printed), IsEmpty());
    EXPECT_EQ(printed, "\t\tinvalid length 5!\n");
}

TEST(walk_options, takes_a_length_octet_that_is_not_held_for_zero) {
    std::string printed;
    EXPECT_THAT(walk({7, 2, 8}, printed), ElementsAre(Pair(7, 2)));
    EXPECT_EQ(printed, "\t\tinvalid length 0!\n");
}

TEST(walk_options, ends_silently_where_nothing_is_held) {
    std::vector<std::uint8_t> held = {7, 2, 5, 6, 1};
    octets options = octets_of(held);
    options.length = 1000;
    std::string printed;
    EXPECT_THAT(walk(options, printed), ElementsAre(Pair(7, 2), Pair(5, 6)));
    EXPECT_EQ(printed, "");
}

TEST(walk_options, counts_down_by_the_length_when_a_printer_stays) {
    std::string printed;
    EXPECT_THAT(walk({3, 6, 4, 2, 9, 2, 8, 2}, printed, keep_and_stay), ElementsAre(Pair(3, 6), Pair(4, 2)));
    EXPECT_EQ(printed, "");
}

TEST(walk_options, walks_nothing_of_a_negative_length) {
    std::vector<std::uint8_t> held = {7, 2};
    octets options = octets_of(held);
    options.length = -1;
    std::string printed;
    EXPECT_THAT(walk(options, printed), IsEmpty());
}

}  // namespace
}  // namespace ifwatch
