#include "command_line/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace ifwatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What a program with a few options makes of a command line.
struct read_line {
    int port = 7000;
    std::string name = "nobody";
    std::string color = "none";
    int level = 0;
    bool verbose = false;
    bool help = false;
    std::vector<std::string> operands;
    std::string mistake;
    bool right = false;

    explicit read_line(std::vector<std::string> words, bool only_known = false) {
        command_line line;
        line.help("-h,--help", help);
        line.option("-p,--port", "a port from 1 to 65535", number(port, 1, 0xFFFF));
        line.option("--name", "a name", any_text(name));
        line.option("--level", "low or high", one_of(level, {{"low", 1}, {"high", 2}}));
        line.option_or_flag("--color", "some color", [this](const std::string& text) {
            color = text;
            return text != "grey";
        });
        line.flag("-v,--verbose", verbose);
        words.insert(words.begin(), "program");
        std::vector<char*> pointers;
        std::ranges::transform(words, std::back_inserter(pointers), [](std::string& word) { return word.data(); });
        const int count = static_cast<int>(words.size());
        right = only_known ? line.parse_known(count, pointers.data(), operands, mistake)
                           : line.parse(count, pointers.data(), operands, mistake);
    }
};

TEST(tool_options, reads_options_wherever_they_stand) {
    const read_line line({"a", "--port", "0x10", "b", "-v", "-", "--level=high"});
    EXPECT_TRUE(line.right) << line.mistake;
    EXPECT_EQ(line.port, 16);
    EXPECT_EQ(line.level, 2);
    EXPECT_TRUE(line.verbose);
    EXPECT_THAT(line.operands, ElementsAre("a", "b", "-"));
}

TEST(tool_options, has_letters_alone_together_and_with_their_argument) {
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"-v", "-p", "10"}, {"-vp10"}, {"-vp", "10"}, {"-p10", "-v"}, {"--verbose", "--port=10"}}) {
        const read_line line(words);
        EXPECT_EQ(line.port, 10) << line.mistake;
        EXPECT_TRUE(line.verbose);
    }
}

TEST(tool_options, takes_any_word_behind_an_option_for_its_argument) {
    for (const std::string word : {"--port", "--port=", "--", "-", "-v", "", "{}", "[a,b]", "%%", "a b", "\"q\""}) {
        const read_line line({"--name", word, "file"});
        EXPECT_EQ(line.name, word);
        EXPECT_EQ(line.port, 7000);
        EXPECT_THAT(line.operands, ElementsAre("file")) << word;
    }
}

TEST(tool_options, takes_an_empty_argument_behind_an_equals_sign) {
    const read_line line({"--name=", "file"});
    EXPECT_EQ(line.name, "");
    EXPECT_THAT(line.operands, ElementsAre("file"));
    EXPECT_EQ(read_line({"--port=", "7"}).mistake, "--port takes a port from 1 to 65535, not ''");
    EXPECT_EQ(read_line({"-p=", "7"}).mistake, "--port takes a port from 1 to 65535, not '='");
    EXPECT_EQ(read_line({"-p", "", "7"}).mistake, "--port takes a port from 1 to 65535, not ''");
}

TEST(tool_options, has_only_operands_behind_two_hyphens) {
    const read_line line({"a", "--", "-v", "--", "--port", "[x]", "{}"});
    EXPECT_TRUE(line.right) << line.mistake;
    EXPECT_FALSE(line.verbose);
    EXPECT_THAT(line.operands, ElementsAre("a", "-v", "--", "--port", "[x]", "{}"));
}

TEST(tool_options, takes_the_last_of_an_option_but_a_mistake_in_each) {
    EXPECT_EQ(read_line({"--port", "1", "-p", "2"}).port, 2);
    EXPECT_EQ(read_line({"--port", "x", "--port", "2"}).mistake, "--port takes a port from 1 to 65535, not 'x'");
}

TEST(tool_options, has_options_with_and_without_an_argument) {
    EXPECT_EQ(read_line({"--color"}).color, "");
    EXPECT_EQ(read_line({"--color=red"}).color, "red");
    EXPECT_EQ(read_line({"--color=true"}).color, "true");
    EXPECT_EQ(read_line({"--color=a=b"}).color, "a=b");
    const read_line line({"--color", "red"});
    EXPECT_EQ(line.color, "");
    EXPECT_THAT(line.operands, ElementsAre("red"));
    EXPECT_EQ(read_line({"--color=grey"}).mistake, "--color takes some color, not 'grey'");
    EXPECT_EQ(read_line({"--verbose=true"}).mistake, "--verbose takes no argument, not 'true'");
    EXPECT_EQ(read_line({"--verbose=false"}).mistake, "--verbose takes no argument, not 'false'");
}

TEST(tool_options, reads_on_behind_a_mistake_and_names_the_first) {
    const read_line line({"--level", "middle", "--port", "0", "--name", "x"});
    EXPECT_FALSE(line.right);
    EXPECT_EQ(line.mistake, "--level takes low or high, not 'middle'");
    EXPECT_EQ(line.name, "x");
}

TEST(tool_options, names_what_it_does_not_know) {
    for (const std::string word : {"-x", "-xv", "-5", "-!", "-?", "--start", "--start=5", "---x", "--por"}) {
        const read_line line({"a", word, "b"});
        EXPECT_FALSE(line.right);
        EXPECT_EQ(line.mistake, "unknown option '" + word + "'");
        EXPECT_THAT(line.operands, ElementsAre("a", "b"));
    }
}

TEST(tool_options, misses_an_argument) {
    EXPECT_EQ(read_line({"a", "--port"}).mistake, "--port: 1 required argument (a port from 1 to 65535) is missing");
    EXPECT_EQ(read_line({"-vp"}).mistake, "--port: 1 required argument (a port from 1 to 65535) is missing");
    EXPECT_EQ(read_line({"--verbose=3"}).mistake, "--verbose takes no argument, not '3'");
}

TEST(tool_options, keeps_a_mistake_on_one_line) {
    EXPECT_EQ(read_line({"--level", "a\n\x1b"}).mistake, "--level takes low or high, not 'a\\n\\x1b'");
    EXPECT_EQ(read_line({"--a\n"}).mistake, "unknown option '--a\\n'");
}

TEST(tool_options, ends_where_help_is_asked_for) {
    const read_line behind({"--help", "--port", "x", "--start"});
    EXPECT_TRUE(behind.right) << behind.mistake;
    EXPECT_TRUE(behind.help);
    EXPECT_FALSE(read_line({"--port", "x", "--help"}).right);
    EXPECT_FALSE(read_line({"--start", "--help"}).right);
    EXPECT_TRUE(read_line({"-vh"}).help);
}

TEST(tool_options, leaves_what_it_does_not_know_to_another_parser) {
    const read_line line({"-2", "--port", "1", "-!", "a", "-T", "5", "-", "-?", "--", "--port", "2"}, true);
    EXPECT_TRUE(line.right) << line.mistake;
    EXPECT_EQ(line.port, 1);
    EXPECT_THAT(line.operands, ElementsAre("-2", "-!", "a", "-T", "5", "-", "-?", "--", "--port", "2"));
    EXPECT_THAT(read_line({"-v"}, true).operands, IsEmpty());
}

}  // namespace
}  // namespace ifwatch
