#include "trace/addinfo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace ifwatch {
namespace {

struct typed_filter {
    char kind;
    const char* text;
};

std::vector<std::uint8_t> addinfo_of(const std::vector<typed_filter>& filters, const atm_parameters& atm = {},
                                     bool list_mode = false, int version = 3) {
    addinfo_buffer buffer;
    for (const typed_filter& filter : filters) {
        buffer.used = add_filter(buffer.data, filter.text, filter.kind, buffer.used);
    }
    buffer.used = build_addinfo(version, buffer.data, atm, list_mode, buffer.used);
    return {buffer.data.begin(), buffer.data.begin() + buffer.used};
}

using octet_list = std::vector<std::uint8_t>;

TEST(addinfo, start_alone_without_options) {
    const octet_list start{0, 0, 0, 3, 0, 0, 0, 0};
    EXPECT_EQ(addinfo_of({}), start);
    EXPECT_EQ(addinfo_of({}, {}, false, 2), start);
}

TEST(addinfo, filters_stand_in_a_section_in_their_order) {
    const octet_list expected{0xFF, 0xFF, 0xFF, 6,                        //
                              0,    0,    3,    'I', ':', ':', '6',       //
                              0,    0,    0,    'o',                      //
                              0,    0,    4,    'I', ':', ':', '1', '7',  //
                              0,    0,    0,    0,                        //
                              0,    0,    0,    3,                        //
                              0,    0,    0,    0};
    EXPECT_EQ(addinfo_of({{'I', "::6"}, {'o', nullptr}, {'I', "::17"}}), expected);
}

TEST(addinfo, every_kind_of_filter) {
    const octet_list expected{0xFF, 0xFF, 0xFF, 6,              //
                              0,    0,    1,    'B', '1',       //
                              0,    0,    2,    's', '2', '3',  //
                              0,    0,    1,    'd', '4',       //
                              0,    0,    0,    'l',            //
                              0,    0,    0,    'I',            //
                              0,    0,    0,    0,              //
                              0,    0,    0,    3,              //
                              0,    0,    0,    0};
    EXPECT_EQ(addinfo_of({{'B', "1"}, {'s', "23"}, {'d', "4"}, {'l', nullptr}, {'I', ""}}), expected);
}

TEST(addinfo, a_filter_longer_than_one_length_octet) {
    const std::string text(0x123, 'a');
    const octet_list addinfo = addinfo_of({{'I', text.c_str()}});
    ASSERT_EQ(addinfo.size(), 4 + 4 + text.size() + 12);
    EXPECT_EQ(octet_list(addinfo.begin() + 4, addinfo.begin() + 9), (octet_list{0, 1, 0x23, 'I', 'a'}));
}

TEST(addinfo, vci_comes_before_vpi) {
    const octet_list expected{0, 0, 2, 7, 0, 35, 0, 0, 1, 8, 8, 0, 0, 0, 3, 0, 0, 0, 0};
    EXPECT_EQ(addinfo_of({}, {.vpi = 8, .vci = 35}), expected);
}

TEST(addinfo, line_numbers_keep_their_low_octets) {
    const octet_list expected{0, 0, 2, 7, 0x23, 0x45, 0, 0, 1, 8, 0x67, 0, 0, 0, 3, 0, 0, 0, 0};
    EXPECT_EQ(addinfo_of({}, {.vpi = 0x567, .vci = 0x12345}), expected);
}

TEST(addinfo, zero_is_a_given_line_number_and_a_negative_one_is_not) {
    EXPECT_EQ(addinfo_of({}, {.vpi = 0, .vci = -7}), (octet_list{0, 0, 1, 8, 0, 0, 0, 0, 3, 0, 0, 0, 0}));
    EXPECT_EQ(addinfo_of({}, {.vpi = -1, .vci = 0}), (octet_list{0, 0, 2, 7, 0, 0, 0, 0, 0, 3, 0, 0, 0, 0}));
}

TEST(addinfo, the_line_flag_is_an_element_without_data) {
    EXPECT_EQ(addinfo_of({}, {.flags = 1}), (octet_list{0, 0, 0, 9, 0, 0, 0, 3, 0, 0, 0, 0}));
    EXPECT_EQ(addinfo_of({}, {.flags = 0xFE}), (octet_list{0, 0, 0, 3, 0, 0, 0, 0}));
}

TEST(addinfo, list_mode_asks_for_the_interfaces_and_nothing_else) {
    const octet_list expected{0xFF, 0xFF, 0xFF, 6,                                            //
                              0,    0,    8,    'I', '1', '.', '1', '.', '1', '.', '1', '0',  //
                              0,    0,    0,    0,                                            //
                              0,    0,    0,    11,                                           //
                              0,    0,    0,    0};
    EXPECT_EQ(addinfo_of({{'I', "1.1.1.10"}}, {.vpi = 1, .vci = 2, .flags = 1}, true), expected);
    EXPECT_EQ(addinfo_of({}, {}, true), (octet_list{0, 0, 0, 11, 0, 0, 0, 0}));
}

TEST(addinfo, version_one_sends_nothing_when_nothing_was_asked) {
    EXPECT_EQ(addinfo_of({}, {}, false, 1), octet_list{});
    EXPECT_EQ(addinfo_of({}, {}, false, 0), octet_list{});
    EXPECT_EQ(addinfo_of({}, {.flags = 1}, false, 1).size(), 12U);
    EXPECT_EQ(addinfo_of({{'l', nullptr}}, {}, false, 1).size(), 20U);
}

TEST(addinfo, what_does_not_fit_is_counted_and_not_written) {
    std::array<std::uint8_t, 16> memory{};
    memory.fill(0xEE);
    const std::span<std::uint8_t> buffer = std::span(memory).first<10>();
    int used = add_filter(buffer, "abcdef", 'I', 0);
    EXPECT_EQ(used, 4 + 4 + 6);
    used = add_filter(buffer, "x", 'I', used);
    EXPECT_EQ(used, 14 + 5);
    used = build_addinfo(3, buffer, {.vpi = 1}, false, used);
    EXPECT_EQ(used, 19 + 4 + 5 + 8);
    EXPECT_EQ(std::memcmp(memory.data(), "\xFF\xFF\xFF\x06\0\0\6Iab", 10), 0);
    EXPECT_TRUE(std::all_of(memory.begin() + 10, memory.end(), [](std::uint8_t octet) { return octet == 0xEE; }));
}

}  // namespace
}  // namespace ifwatch
