#include "fax/ppr.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <vector>

#include "support/captured_output.h"

namespace ifwatch {
namespace {

std::string ranges(std::vector<std::uint8_t> held, int length) {
    captured_output output;
    octets bitmap = octets_of(held);
    bitmap.length = length;
    print_ppr_bitmap(bitmap);
    return output.take();
}

std::string ranges(const std::vector<std::uint8_t>& bitmap) { return ranges(bitmap, static_cast<int>(bitmap.size())); }

/// Reads " 0-7 9\n" back.
std::set<int> frames_of(const std::string& text) {
    std::set<int> frames;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const std::size_t dash = word.find('-');
        const int first = std::stoi(word);
        const int last = dash == std::string::npos ? first : std::stoi(word.substr(dash + 1));
        for (int frame = first; frame <= last; ++frame) {
            frames.insert(frame);
        }
    }
    return frames;
}

TEST(ppr_bitmap, runs_print_as_ranges) {
    EXPECT_EQ(ranges({0x00, 0x00}), "\n");
    EXPECT_EQ(ranges({0x05, 0x00}), " 0 2\n");
    EXPECT_EQ(ranges({0x06, 0x00}), " 1-2\n");
    EXPECT_EQ(ranges({0x81, 0x01}), " 0 7-8\n");
}

TEST(ppr_bitmap, the_bit_behind_the_bitmap_ends_a_run_when_it_is_clear) {
    EXPECT_EQ(ranges({0xFF, 0x00}, 1), " 0-7\n");
    EXPECT_EQ(ranges({0xFF, 0x01}, 1), " 0-7\n");
    EXPECT_EQ(ranges({0xFF}, 1), " 0-7\n");
    EXPECT_EQ(ranges({0x01, 0x00}, 1), " 0\n");
    EXPECT_EQ(ranges({0x80, 0xFE}, 1), " 7\n");
}

TEST(ppr_bitmap, a_run_that_begins_behind_the_bitmap_ends_before_it) {
    EXPECT_EQ(ranges({0x01, 0x01}, 1), " 0 8-7\n");
    EXPECT_EQ(ranges({0x01}, 0), " 0--1\n");
}

TEST(ppr_bitmap, a_negative_length_has_no_frames) { EXPECT_EQ(ranges({0xFF}, -1), "\n"); }

TEST(ppr_bitmap, octets_that_are_not_held_ask_for_nothing) {
    EXPECT_EQ(ranges({0x80}, 32), " 7\n");
    EXPECT_EQ(ranges({0xFF}, 0x7FFFFFFF), " 0-7\n");
}

TEST(ppr_bitmap, any_bitmap_reads_back) {
    std::uint32_t sequence = 1;
    for (int round = 0; round < 200; ++round) {
        std::vector<std::uint8_t> bitmap(32);
        std::set<int> expected;
        for (int frame = 0; frame < 256; ++frame) {
            sequence = sequence * 1664525 + 1013904223;
            if ((sequence >> 16) % 3 != 0) {
                bitmap[static_cast<std::size_t>(frame / 8)] |= static_cast<std::uint8_t>(1U << (frame % 8));
                expected.insert(frame);
            }
        }
        EXPECT_EQ(frames_of(ranges(bitmap)), expected);
    }
}

}  // namespace
}  // namespace ifwatch
