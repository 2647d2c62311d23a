#include "base/program_name.h"

#include <gtest/gtest.h>

#include <string>

namespace ifwatch {
namespace {

class program_name_test : public testing::Test {
public:
    void TearDown() override { set_program_name("ifwatch"); }
};

std::string name_of(const char* path) {
    set_program_name(path);
    EXPECT_STREQ(program_name_argument(), std::string(program_name()).c_str());
    return std::string(program_name());
}

TEST_F(program_name_test, is_the_part_behind_the_last_slash) {
    EXPECT_EQ(name_of("./bin/x"), "x");
    EXPECT_EQ(name_of("/usr/bin/ifwatch"), "ifwatch");
    EXPECT_EQ(name_of("tracer"), "tracer");
    EXPECT_EQ(name_of("bin/"), "");
}

TEST_F(program_name_test, keeps_thirty_two_characters) {
    const std::string longest(32, 'n');
    EXPECT_EQ(name_of(longest.c_str()), longest);
    EXPECT_EQ(name_of(("/bin/" + longest + "more").c_str()), longest);
}

TEST_F(program_name_test, a_shorter_name_replaces_a_longer_one_whole) {
    EXPECT_EQ(name_of("a-rather-long-name"), "a-rather-long-name");
    EXPECT_EQ(name_of("short"), "short");
}

TEST_F(program_name_test, stays_when_there_is_none) {
    EXPECT_EQ(name_of("tracer"), "tracer");
    EXPECT_EQ(name_of(nullptr), "tracer");
}

}  // namespace
}  // namespace ifwatch
