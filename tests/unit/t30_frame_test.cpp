#include "fax/t30_frame.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/captured_output.h"

namespace ifwatch {
namespace {

using octet_list = std::vector<std::uint8_t>;

octet_list reversed(octet_list field, int length) {
    octets view = octets_of(field);
    view.length = length;
    reverse_octets(view);
    return field;
}

TEST(reverse_octets, even_and_odd_numbers_of_octets) {
    EXPECT_EQ(reversed({}, 0), octet_list{});
    EXPECT_EQ(reversed({1}, 1), octet_list{1});
    EXPECT_EQ(reversed({1, 2}, 2), (octet_list{2, 1}));
    EXPECT_EQ(reversed({1, 2, 3}, 3), (octet_list{3, 2, 1}));
}

TEST(reverse_octets, only_what_is_declared_and_held) {
    EXPECT_EQ(reversed({1, 2, 3, 4}, 2), (octet_list{2, 1, 3, 4}));
    EXPECT_EQ(reversed({1, 2, 3}, 9), (octet_list{3, 2, 1}));
    EXPECT_EQ(reversed({1, 2, 3}, -1), (octet_list{1, 2, 3}));
}

TEST(t30_frame, an_identification_is_turned_round_in_the_frame_itself) {
    octet_list frame{0x40, '4', '3', '2', '1'};
    captured_output output;
    dump_t30_frame(octets_of(frame));
    EXPECT_EQ(output.take(), "CSI \"1234\"\n");
    EXPECT_EQ(frame, (octet_list{0x40, '1', '2', '3', '4'}));
}

TEST(t30_frame, an_identification_that_is_declared_and_not_held) {
    octet_list frame{0x42, '1'};
    octets declared = octets_of(frame);
    declared.length = 1000;
    captured_output output;
    dump_t30_frame(declared);
    EXPECT_EQ(output.take(), "TSI(R) \"1\"\n");
}

TEST(t30_frame_name, has_no_letter_of_the_station) {
    EXPECT_EQ(t30_frame_name(0x8C), "MCF");
    EXPECT_EQ(t30_frame_name(0x2F), "EOP");
    EXPECT_EQ(t30_frame_name(0x86), "RCP");
    EXPECT_EQ(t30_frame_name(0x80), "");
}

}  // namespace
}  // namespace ifwatch
