#include "base/names.h"

#include <gtest/gtest.h>

namespace ifwatch {
namespace {

constexpr named_value TABLE[] = {{1, "one"}, {2, "two"}, {2, "again"}, {-2, "minus two"}, {0, nullptr}, {3, "behind"}};
constexpr table_text NAMES[] = {"zero", "one"};

TEST(value_name, finds_the_first_row_of_a_value) {
    EXPECT_EQ(value_name(TABLE, 1).view(), "one");
    EXPECT_EQ(value_name(TABLE, 2).view(), "two");
    EXPECT_EQ(value_name(TABLE, -2).view(), "minus two");
}

TEST(value_name, gives_the_default_for_an_absent_value) {
    EXPECT_EQ(value_name(TABLE, 9, "unknown").view(), "unknown");
    EXPECT_FALSE(value_name(TABLE, 9));
}

TEST(value_name, a_row_without_a_name_ends_the_table) {
    EXPECT_FALSE(value_name(TABLE, 3));
    constexpr named_value ended[] = {{1, nullptr}};
    EXPECT_EQ(value_name(ended, 1, "default").view(), "default");
    EXPECT_EQ(value_name({}, 1, "default").view(), "default");
}

TEST(name_at, checks_its_index) {
    EXPECT_EQ(name_at(NAMES, 1).view(), "one");
    EXPECT_EQ(name_at(NAMES, 2, "none").view(), "none");
    EXPECT_EQ(name_at(NAMES, -1, "none").view(), "none");
    EXPECT_FALSE(name_at(NAMES, 2));
}

TEST(is_printable, is_that_of_the_c_locale) {
    EXPECT_FALSE(is_printable(0x1F));
    EXPECT_TRUE(is_printable(0x20));
    EXPECT_TRUE(is_printable(0x7E));
    EXPECT_FALSE(is_printable(0x7F));
    EXPECT_FALSE(is_printable(0xE4));
}

}  // namespace
}  // namespace ifwatch
