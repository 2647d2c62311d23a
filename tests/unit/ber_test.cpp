#include "inet/ber.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "inet/snmp.h"
#include "support/captured_output.h"

namespace ifwatch {
namespace {

using frame = std::vector<std::uint8_t>;

std::string ber(frame data, const char* prefix = "") {
    captured_output output;
    dump_ber(prefix, octets_of(data));
    return output.take();
}

std::string snmp(frame data) {
    captured_output output;
    dump_snmp("\t", octets_of(data));
    return output.take();
}

std::size_t count(const std::string& text, char wanted) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), wanted));
}

/// `levels` context-specific elements, each the contents of the one before.
frame nested(int levels) {
    frame data;
    for (int i = 1; i <= levels; ++i) {
        data.insert(data.end(), {0xA0, static_cast<std::uint8_t>(2 * (levels - i))});
    }
    return data;
}

TEST(dump_ber, follows_every_line_end_with_the_prefix) {
    EXPECT_EQ(ber({0x30, 0x03, 0x02, 0x01, 0x2A}, "<>"),
              "sequence (0x3)\n<>{\n<>    integer (0x1)\n<>    42\n<>}\n<>\n<>");
}

TEST(dump_ber, prints_nothing_of_nothing) { EXPECT_EQ(ber({}), ""); }

TEST(dump_ber, takes_the_first_octet_of_an_object_identifier_apart) {
    EXPECT_EQ(ber({0x06, 0x01, 0x27}), "object_identifier (0x1)\n0x27  (0.39)\n");
    EXPECT_EQ(ber({0x06, 0x01, 0x50}), "object_identifier (0x1)\n0x50  (2.0)\n");
}

TEST(dump_ber, prints_one_element_even_when_none_is_declared) {
    frame data = {0x05, 0x00, 0x05, 0x00};
    captured_output output;
    for (const int declared : {-7, 0, 1, 2}) {
        dump_ber("", octets_of(data).at(0, declared));
        EXPECT_EQ(output.take(), "null (0x0)\n\n") << declared;
    }
    dump_ber("", octets_of(data).at(0, 3));
    EXPECT_EQ(output.take(), "null (0x0)\n\nnull (0x0)\n\n");
}

TEST(dump_ber, shows_no_octet_behind_the_hard_end) {
    frame data = {0x04, 0x04, 0x41, 0x42, 0x43, 0x44};
    captured_output output;
    dump_ber("", octets_of(data).cut(4));
    EXPECT_EQ(output.take(), "octet_string (0x4)\n0x41 0x42  (AB)\n");
}

TEST(dump_ber, keeps_the_low_32_bits_of_a_length) {
    EXPECT_EQ(ber({0x05, 0x89, 1, 2, 3, 4, 5, 0x80, 0, 0, 0}), "null (0x80000000)\n\n");
}

TEST(dump_ber, takes_sizes_for_what_they_are_up_to_32_bits) {
    // Header and contents together are more than 32 bits hold: the element still fills its level.
    EXPECT_EQ(ber({0x05, 0x84, 0xFF, 0xFF, 0xFF, 0xFF, 0x02, 0x01, 0x07}), "null (0xffffffff)\n0x2 0x1 0x7 \n");
}

TEST(dump_ber, opens_32_levels_below_the_outermost) {
    EXPECT_EQ(count(ber(nested(33)), '{'), 33U);
    EXPECT_EQ(count(ber(nested(33)), '}'), 33U);
    EXPECT_EQ(ber(nested(33)).find("primitive"), std::string::npos);
    EXPECT_EQ(count(ber(nested(34)), '{'), 33U);
    EXPECT_NE(ber(nested(34)).find("primitive [0] (0x0)"), std::string::npos);
    EXPECT_EQ(count(ber(nested(60)), '{'), 33U);
}

TEST(dump_ber, indents_by_four_columns_a_level) {
    EXPECT_NE(ber(nested(33)).find("\n" + std::string(128, ' ') + "sequence [0] (0x0)\n"), std::string::npos);
}

TEST(dump_snmp, names_the_pdus) {
    const char* const names[] = {"GetRequest", "GetNextRequest", "GetResponse", "SetRequest", "Trap"};
    for (std::uint8_t tag = 0; tag < 5; ++tag) {
        EXPECT_EQ(snmp({static_cast<std::uint8_t>(0xA0 | tag), 0x00}),
                  std::string(names[tag]) + " (0x0)\n\t{\n\t}\n\t\n\t");
        EXPECT_EQ(snmp({static_cast<std::uint8_t>(0x80 | tag), 0x01, 0x41}),
                  std::string(names[tag]) + " (0x1)\n\t0x41  (A)\n\t");
    }
    EXPECT_EQ(snmp({0xA5, 0x00}), "unknown contextname (0x0)\n\t{\n\t}\n\t\n\t");
    EXPECT_EQ(snmp({0xBF, 0x00}), "unknown contextname (0x0)\n\t{\n\t}\n\t\n\t");
}

TEST(dump_snmp, prints_a_message) {
    const frame message = {0x30, 0x2B, 0x02, 0x01, 0x00, 0x04, 0x06, 'p',  'u',  'b',  'l',  'i',  'c',  0xA2, 0x1E,
                           0x02, 0x01, 0x09, 0x02, 0x01, 0x00, 0x02, 0x01, 0x00, 0x30, 0x13, 0x30, 0x11, 0x06, 0x08,
                           0x2B, 0x06, 0x01, 0x02, 0x01, 0x01, 0x03, 0x00, 0x43, 0x05, 0x00, 0x00, 0x05, 0x7E, 0x40};
    EXPECT_EQ(snmp(message),
              "sequence (0x2b)\n"
              "\t{\n"
              "\t    integer (0x1)\n"
              "\t    0\n"
              "\t    octet_string (0x6)\n"
              "\t    0x70 0x75 0x62 0x6c 0x69 0x63  (public)\n"
              "\t    GetResponse (0x1e)\n"
              "\t    {\n"
              "\t        integer (0x1)\n"
              "\t        9\n"
              "\t        integer (0x1)\n"
              "\t        0\n"
              "\t        integer (0x1)\n"
              "\t        0\n"
              "\t        sequence (0x13)\n"
              "\t        {\n"
              "\t            sequence (0x11)\n"
              "\t            {\n"
              "\t                object_identifier (0x8)\n"
              "\t                0x2b 0x6 0x1 0x2 0x1 0x1 0x3 0x0  (1.3.6.1.2.1.1.3.0)\n"
              "\t                timeticks (0x5)\n"
              "\t                360000 (1:0:0)\n"
              "\t            }\n"
              "\t        }\n"
              "\t    }\n"
              "\t}\n"
              "\t\n"
              "\t");
}

}  // namespace
}  // namespace ifwatch
