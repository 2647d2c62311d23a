#include "read/line_colors.h"

#include <gtest/gtest.h>

#include <string>

namespace ifwatch::read {
namespace {

constexpr std::string_view TEXT =
    "000001.068 R #00000004 DATA[0003]   \n"
    "      0000: 02 8d 73                                          ..s             \n"
    "\tSAPI=00 \x1b[2J\n"
    "\n"
    "=== eth0: LAN\n"
    "1234567.000 X\n"
    "  00010000: 7e\n"
    "      none";

constexpr std::string_view COLORED =
    "\x1b[1m000001.068 R #00000004 DATA[0003]   \x1b[0m\n"
    "\x1b[2m      0000: 02 8d 73                                          ..s             \x1b[0m\n"
    "\tSAPI=00 \\x1b[2J\n"
    "\n"
    "\x1b[36m=== eth0: LAN\x1b[0m\n"
    "\x1b[1m1234567.000 X\x1b[0m\n"
    "\x1b[2m  00010000: 7e\x1b[0m\n"
    "      none";

TEST(line_colors, come_out_alike_however_the_text_is_cut) {
    for (std::size_t piece = 1; piece <= TEXT.size(); ++piece) {
        line_colors colors;
        text_buffer<1024> out;
        for (std::size_t at = 0; at < TEXT.size(); at += piece) {
            colors.put(out, TEXT.substr(at, piece));
        }
        colors.finish(out);
        EXPECT_EQ(out.text(), COLORED) << "in pieces of " << piece;
    }
}

TEST(line_colors, tell_the_first_line_of_a_record_from_others) {
    EXPECT_EQ(find_line_kind("000001.068 R"), line_kind::RECORD);
    for (const char* const other :
         {"00001.068 R", "000001.06 R", "000001.0681 R", "000001,068 R", " 000001.068 R", ""}) {
        EXPECT_EQ(find_line_kind(other), line_kind::OTHER) << other;
    }
}

TEST(line_colors, tell_hexadecimal_from_others) {
    EXPECT_EQ(find_line_kind("      00f0: 01"), line_kind::HEXADECIMAL);
    for (const char* const other : {"0000: 01", "      000: 01", "      0000 01", "      00F0: 01", "\t0000: 01"}) {
        EXPECT_EQ(find_line_kind(other), line_kind::OTHER) << other;
    }
}

}  // namespace
}  // namespace ifwatch::read
