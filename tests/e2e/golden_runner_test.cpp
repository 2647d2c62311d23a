#include <gtest/gtest.h>

#include "support/process.h"
#include "support/programs.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

constexpr char CASE[] = "channel 0\noptions -2\nrecord R 1000\n 00 01 7F\nrecord X 1200\n 00 01 73\n";
constexpr std::string_view EXPECTED =
    "000001.000 R #00000001 DATA[0003]   \n"
    "\tSAPI=00\tC/R=0\tTEI=00\tSABME P/F=1\n"
    "\n"
    "000001.200 X #00000002 DATA[0003]   \n"
    "\tSAPI=00\tC/R=0\tTEI=00\tUA    P/F=1\n"
    "\n";

/// A directory with one case in it.
struct golden_folder {
    temp_directory directory;
    std::string path = directory.file("frames.case");

    explicit golden_folder(const std::string& text) { directory.write("frames.case", text); }

    void expect(const std::string& text) const { directory.write("frames.expected", text); }
    [[nodiscard]] std::string expected() const {
        std::string text;
        EXPECT_TRUE(read_file(directory.file("frames.expected"), text));
        return text;
    }
    [[nodiscard]] outcome run_case(std::vector<std::string> options = {}) const {
        options.push_back(path);
        return run({GOLDEN_RUNNER_PROGRAM, options});
    }
};

TEST(golden_runner, passes_a_case_that_holds) {
    const golden_folder folder(CASE);
    folder.expect(std::string(EXPECTED));
    const outcome checked = folder.run_case();
    EXPECT_EQ(checked.status, 0) << checked.errors;
    EXPECT_EQ(checked.errors, "");
}

TEST(golden_runner, shows_the_first_line_that_differs) {
    const golden_folder folder(CASE);
    std::string wrong(EXPECTED);
    wrong.replace(wrong.find("UA    P/F=1"), 11, "UA    P/F=0");
    folder.expect(wrong);
    const outcome checked = folder.run_case();
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.errors, folder.path +
                                  ": options -2: line 5, record 2\n"
                                  "  expected \"\\tSAPI=00\\tC/R=0\\tTEI=00\\tUA    P/F=0\\n\"\n"
                                  "  got      \"\\tSAPI=00\\tC/R=0\\tTEI=00\\tUA    P/F=1\\n\"\n");
}

TEST(golden_runner, fails_on_every_difference) {
    const golden_folder folder(CASE);
    for (std::size_t i = 0; i < EXPECTED.size(); ++i) {
        if (EXPECTED[i] == ' ' || EXPECTED[i] == '\n') {
            std::string wrong(EXPECTED);
            wrong.erase(i, 1);
            folder.expect(wrong);
            EXPECT_EQ(folder.run_case().status, 1) << "without character " << i;
        }
    }
    folder.expect(std::string(EXPECTED) + "\n");
    EXPECT_EQ(folder.run_case().status, 1);
    folder.expect("");
    EXPECT_EQ(folder.run_case().status, 1);
}

TEST(golden_runner, fails_without_an_expected_text) {
    const golden_folder folder(CASE);
    const outcome checked = folder.run_case();
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.errors, folder.path + ": no expected text: " + folder.directory.file("frames.expected") + "\n");
    EXPECT_FALSE(read_file(folder.directory.file("frames.expected"), *std::make_unique<std::string>()))
        << "nothing accepts by itself";
}

TEST(golden_runner, runs_every_options_line) {
    const golden_folder folder("channel 0\noptions -2\noptions -D -2\noptions\nrecord R 1000\n 00 01 7F\n");
    const std::string first = "=== -2\n000001.000 R #00000001 DATA[0003]   \n\tSAPI=00\tC/R=0\tTEI=00\tSABME P/F=1\n\n";
    const std::string second =
        "=== -D -2\n000001.000 R #00000001 DATA[0003]            | 000.000+0.000\n"
        "\tSAPI=00\tC/R=0\tTEI=00\tSABME P/F=1\n\n";
    const std::string third =
        "===\n000001.000 R #00000001 DATA[0003]   \n"
        "      0000: 00 01 7f                                          ...             \n"
        "\tSAPI=00\tC/R=0\tTEI=00\tSABME P/F=1\n\n";
    folder.expect(first + second + third);
    EXPECT_EQ(folder.run_case().status, 0) << folder.run_case().errors;
    folder.expect(first + third + second);
    EXPECT_EQ(folder.run_case().status, 1);
    folder.expect(first + second);
    const outcome missing = folder.run_case();
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.errors, folder.path + ": the expected text has no line \"===\\n\"\n");
}

TEST(golden_runner, accepts_when_told_to) {
    const golden_folder one(CASE);
    EXPECT_EQ(one.run_case({"--accept"}).status, 0);
    EXPECT_EQ(one.expected(), EXPECTED);
    const golden_folder two("channel 0\noptions -2\noptions -h\nrecord R 1000\n 00 01 7F\n");
    two.expect("something else\n");
    EXPECT_EQ(two.run_case({"--accept"}).status, 0);
    EXPECT_TRUE(two.expected().starts_with("=== -2\n000001.000 R")) << two.expected();
    EXPECT_NE(two.expected().find("\n=== -h\n000001.000 R"), std::string::npos) << two.expected();
    EXPECT_EQ(two.run_case().status, 0);
}

TEST(golden_runner, names_mistakes_in_a_case) {
    const golden_folder folder("channel 0\noptions -2\nrecrod R 1\n");
    EXPECT_EQ(folder.run_case().errors, folder.path + ":3: unknown word 'recrod'\n");
    const golden_folder without("channel 0\nrecord R 1\n 00\n");
    EXPECT_EQ(without.run_case().errors, without.path + ": no options line\n");
    EXPECT_EQ(without.run_case().status, 1);
}

TEST(golden_runner, fails_when_the_tracer_does) {
    const golden_folder folder("channel 0\noptions --no-such-option\nrecord R 1000\n 00 01 7F\n");
    folder.expect("");
    const outcome checked = folder.run_case();
    EXPECT_EQ(checked.status, 1);
    EXPECT_NE(checked.errors.find(": options --no-such-option: ifwatch: exit status 1\n"), std::string::npos)
        << checked.errors;
}

TEST(golden_runner, ends_a_tracer_that_does_not_end) {
    const golden_folder folder(CASE);
    folder.expect(std::string(EXPECTED));
    const std::string hanging = folder.directory.write("hanging", "#!/bin/sh\nexec sleep 60\n");
    ASSERT_EQ(run({"chmod", {"+x", hanging}}).status, 0);
    const outcome checked = folder.run_case({"--timeout", "1", "--ifwatch", hanging});
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.errors, folder.path + ": options -2: ifwatch: timed out\n");
}

TEST(golden_runner, goes_on_behind_a_case_that_fails) {
    const golden_folder good(CASE);
    const golden_folder bad(CASE);
    good.expect(std::string(EXPECTED));
    bad.expect("");
    const outcome checked = good.run_case({bad.path});
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.output, "2 cases, 1 failed\n");
}

TEST(golden_runner, keeps_the_environment_out) {
    const golden_folder folder(CASE);
    folder.expect(std::string(EXPECTED));
    const outcome checked = run({GOLDEN_RUNNER_PROGRAM, {folder.path}, {{"TRACE_PORT", "1"}, {"TRACE_PWD", "x"}}});
    EXPECT_EQ(checked.status, 0) << checked.errors;
}

}  // namespace
}  // namespace ifwatch::test
