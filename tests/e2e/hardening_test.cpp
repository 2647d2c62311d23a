// What the compiler and the linker were told to do against mistakes, looked for in the program they made.

#include <gtest/gtest.h>

#include <string>

#include "support/process.h"
#include "support/programs.h"

namespace ifwatch::test {
namespace {

std::string shown_by(const std::string& tool, const std::string& option) {
    const outcome got = run({.program = tool, .arguments = {option, "-W", IFWATCH_PROGRAM}});
    EXPECT_EQ(got.status, 0) << got.errors;
    return got.output;
}

std::string line_with(const std::string& text, const std::string& word) {
    const std::size_t at = text.find(word);
    if (at == std::string::npos) {
        return "";
    }
    const std::size_t begin = text.rfind('\n', at) + 1;
    return text.substr(begin, text.find('\n', at) - begin);
}

bool holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(hardening, the_program_lies_elsewhere_in_memory_at_each_run) {
    EXPECT_TRUE(holds(line_with(shown_by("readelf", "-h"), "Type:"), "DYN"));
    EXPECT_TRUE(holds(line_with(shown_by("readelf", "-d"), "(FLAGS_1)"), "PIE"));
}

TEST(hardening, linkage_is_bound_at_the_start_and_then_read_only) {
    EXPECT_TRUE(holds(line_with(shown_by("readelf", "-l"), "GNU_RELRO"), " R "));
    EXPECT_TRUE(holds(line_with(shown_by("readelf", "-d"), "(FLAGS_1)"), "NOW"));
}

TEST(hardening, no_memory_is_both_writable_and_executable) {
    const std::string segments = shown_by("readelf", "-l");
    EXPECT_TRUE(holds(line_with(segments, "GNU_STACK"), " RW "));
    EXPECT_FALSE(holds(segments, " RWE "));
}

TEST(hardening, functions_check_their_stack) { EXPECT_TRUE(holds(shown_by("readelf", "-s"), " __stack_chk_fail@")); }

// The sanitizers and the debugger's build come without it.
#if defined(__OPTIMIZE__) && !defined(IFWATCH_ADDRESS_SANITIZER)
TEST(hardening, the_library_checks_sizes_it_knows) { EXPECT_TRUE(holds(shown_by("readelf", "-s"), "_chk@")); }
#endif

#ifdef __CET__
TEST(hardening, branches_land_where_they_may) {
    const outcome got = run({.program = "objdump", .arguments = {"-d", "--no-show-raw-insn", IFWATCH_PROGRAM}});
    ASSERT_EQ(got.status, 0) << got.errors;
    const std::size_t main_begins = got.output.find("<main>:\n");
    ASSERT_NE(main_begins, std::string::npos);
    const std::size_t first = main_begins + std::string("<main>:\n").size();
    EXPECT_TRUE(holds(got.output.substr(first, got.output.find('\n', first) - first), "endbr"));
}
#endif

}  // namespace
}  // namespace ifwatch::test
