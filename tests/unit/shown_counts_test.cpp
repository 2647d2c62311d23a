#include "read/shown_counts.h"

#include <gtest/gtest.h>

namespace ifwatch::read {
namespace {

TEST(shown_counts, say_what_was_shown) {
    shown_counts counts;
    EXPECT_EQ(counts.text(), "0 packets shown");
    counts.add_shown();
    EXPECT_EQ(counts.text(), "1 packet shown");
    counts.add_shown();
    EXPECT_EQ(counts.text(), "2 packets shown");
}

TEST(shown_counts, say_what_was_not_by_link_type) {
    shown_counts counts;
    for (int i = 0; i < 4; ++i) {
        counts.add_undecoded(195);
    }
    counts.add_undecoded(220);
    counts.add_too_short();
    EXPECT_EQ(counts.text(),
              "0 packets shown, 4 of link type 195, 1 of link type 220 (no decoder), 1 too short for the header of the "
              "link type");
}

TEST(shown_counts, remember_so_many_types_and_no_more) {
    shown_counts counts;
    for (std::uint32_t type = 0; type < 100; ++type) {
        counts.add_undecoded(type);
    }
    const std::string text = counts.text();
    EXPECT_TRUE(text.ends_with(", 1 of link type 15, 84 of further link types (no decoder)")) << text;
}

}  // namespace
}  // namespace ifwatch::read
