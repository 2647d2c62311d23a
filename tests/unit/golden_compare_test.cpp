#include "golden/golden_compare.h"

#include <gtest/gtest.h>

namespace ifwatch::test {
namespace {

TEST(first_difference, of_equal_texts_is_none) {
    EXPECT_FALSE(first_difference("", ""));
    EXPECT_FALSE(first_difference("a\nb\n", "a\nb\n"));
    EXPECT_FALSE(first_difference("no newline", "no newline"));
}

TEST(first_difference, tells_line_and_record) {
    const std::string header = "000001.000 R #00000001 DATA[0003]   \n";
    const auto found =
        first_difference("\n" + header + "\tx\n" + header + "\ty\n", "\n" + header + "\tx\n" + header + "\tz\n");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->line, 5U);
    EXPECT_EQ(found->record, 2U);
    EXPECT_EQ(found->expected, "\"\\ty\\n\"");
    EXPECT_EQ(found->got, "\"\\tz\\n\"");
}

TEST(first_difference, counts_records_by_their_time_stamps_only) {
    const auto found = first_difference("00001.000 R\n0000001.00 R\n000001.000\n4294967.295 R\nx\n",
                                        "00001.000 R\n0000001.00 R\n000001.000\n4294967.295 R\ny\n");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->record, 1U);
}

TEST(first_difference, sees_the_end_and_the_last_newline) {
    EXPECT_EQ(first_difference("a\n", "")->got, "(end of output)");
    EXPECT_EQ(first_difference("a\n", "a\nb\n")->expected, "(end of output)");
    EXPECT_EQ(first_difference("a\n", "a")->got, "\"a\"");
    EXPECT_EQ(first_difference("a ", "a")->expected, "\"a \"");
}

TEST(visible, shows_what_cannot_be_seen) {
    EXPECT_EQ(visible("a\t \r\n"), "\"a\\t \\x0D\\n\"");
    EXPECT_EQ(visible(std::string("\0\x7F\xFF", 3)), "\"\\x00\\x7F\\xFF\"");
}

TEST(split_runs, undoes_join_runs) {
    const std::vector<golden_run> runs = {{"-2", "a\n"}, {"", ""}, {"-2", "=== -2\n=== x\nb\n"}};
    std::vector<golden_run> split;
    std::string error;
    ASSERT_TRUE(split_runs(join_runs(runs), {"-2", "", "-2"}, split, error)) << error;
    ASSERT_EQ(split.size(), 3U);
    for (std::size_t i = 0; i < runs.size(); ++i) {
        EXPECT_EQ(split[i].options, runs[i].options);
        EXPECT_EQ(split[i].output, runs[i].output);
    }
}

TEST(split_runs, takes_the_whole_text_for_a_single_run) {
    std::vector<golden_run> split;
    std::string error;
    ASSERT_TRUE(split_runs("=== -2\nx", {"-2"}, split, error));
    EXPECT_EQ(split.front().output, "=== -2\nx");
}

TEST(split_runs, names_what_is_missing) {
    std::vector<golden_run> split;
    std::string error;
    EXPECT_FALSE(split_runs("x\n=== -2\n", {"-2", "-3"}, split, error));
    EXPECT_EQ(error, "the expected text does not begin with \"=== -2\\n\"");
    EXPECT_FALSE(split_runs("=== -2\nx\n", {"-2", "-3"}, split, error));
    EXPECT_EQ(error, "the expected text has no line \"=== -3\\n\"");
    EXPECT_FALSE(split_runs("", {"-2", "-3"}, split, error));
}

}  // namespace
}  // namespace ifwatch::test
