// ifwatch-read --report as a program: from files and streams, at an interrupt, behind the system-call filter.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "support/process.h"
#include "support/programs.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// The capture of a sample, which has the LAPD frames of a D-channel and no name of the interface.
std::string capture_of(const temp_directory& directory, const std::string& sample) {
    std::string path = directory.file(sample + ".pcap");
    const outcome exported =
        run({IFWATCH_SIM_PROGRAM, {"export", std::string(SAMPLES_DIRECTORY) + "/" + sample + ".case", "-o", path}});
    EXPECT_EQ(exported.status, 0) << exported.errors;
    return path;
}

std::string text_of(const std::string& path) {
    std::string text;
    EXPECT_TRUE(read_file(path, text));
    return text;
}

constexpr const char* WRONG_NUMBER =
    "\nTrouble\n"
    "  1.030 #3 ISDN D-channel: the call to 891555010 was refused by the network: ";

TEST(read_report, says_what_went_wrong_before_what_happened) {
    const temp_directory directory;
    const outcome got = run({IFWATCH_READ_PROGRAM, {"--report", capture_of(directory, "isdn-wrong-number")}});
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.output, StartsWith("22 records of 1 interface, from 1.000 to 35.766\n"));
    EXPECT_THAT(got.output, HasSubstr(WRONG_NUMBER));
    EXPECT_LT(got.output.find("\nTrouble\n"), got.output.find("\nISDN, ISDN D-channel\n"));
    EXPECT_THAT(got.output, Not(HasSubstr("SETUP")));  // no frame
    EXPECT_EQ(got.errors, "ifwatch-read: 22 packets reported on\n");
}

TEST(read_report, a_stream_is_reported_on_at_its_end) {
    const temp_directory directory;
    const std::string capture = text_of(capture_of(directory, "isdn-wrong-number"));
    const outcome got = run({.program = IFWATCH_READ_PROGRAM, .arguments = {"--report", "-"}, .input = capture});
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.output, HasSubstr(WRONG_NUMBER));
}

TEST(read_report, several_files_are_told_apart_on_one_page) {
    const temp_directory directory;
    const std::string first = capture_of(directory, "isdn-wrong-number");
    const std::string second = capture_of(directory, "isdn-call");
    const outcome got = run({IFWATCH_READ_PROGRAM, {"--report", first, second}});
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.output, HasSubstr("of 2 interfaces, from 1.000 to 132.611\n"));
    EXPECT_THAT(got.output, HasSubstr("\nISDN, isdn-wrong-number.pcap\n"));
    EXPECT_THAT(got.output, HasSubstr("\nISDN, isdn-call.pcap\n"));
    EXPECT_EQ(got.output.find("\nTrouble\n"), got.output.rfind("\nTrouble\n"));
}

TEST(read_report, of_a_damaged_file_has_what_came_before) {
    const temp_directory directory;
    const std::string path = capture_of(directory, "isdn-wrong-number");
    const std::string whole = text_of(path);
    ASSERT_TRUE(write_file(path, whole.substr(0, whole.size() - 3)));
    const outcome got = run({IFWATCH_READ_PROGRAM, {"--report", path}});
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.output, StartsWith("21 records of 1 interface"));
    EXPECT_THAT(got.errors, HasSubstr(path + ": "));
}

TEST(read_report, an_interrupt_ends_a_stream_and_not_the_program) {
    const temp_directory directory;
    const std::string capture = text_of(capture_of(directory, "isdn-wrong-number"));
    const std::string pipe = directory.file("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int both_ends = open(pipe.c_str(), O_RDWR);
    ASSERT_GE(both_ends, 0);
    process reader({.program = IFWATCH_READ_PROGRAM, .arguments = {"--report", "--color=never", pipe}});
    // In the middle of a packet; what is in the pipe is gone once it has been read.
    const std::size_t some = capture.size() - 3;
    ASSERT_EQ(write(both_ends, capture.data(), some), static_cast<ssize_t>(some));
    int left = 1;
    while (left > 0 && ioctl(both_ends, FIONREAD, &left) == 0) {
        usleep(1000);
    }
    reader.send_signal(SIGINT);
    const outcome got = reader.wait();
    close(both_ends);
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.output, StartsWith("21 records of 1 interface"));
    EXPECT_THAT(got.output, HasSubstr(WRONG_NUMBER));
    EXPECT_EQ(got.errors, "ifwatch-read: 21 packets reported on\n");
}

TEST(read_report, of_nothing_says_so) {
    const temp_directory directory;
    const std::string path = capture_of(directory, "isdn-wrong-number");
    const std::string whole = text_of(path);
    ASSERT_TRUE(write_file(path, whole.substr(0, 24)));
    const outcome got = run({IFWATCH_READ_PROGRAM, {"--report", path}});
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, "No record.\n");
}

TEST(read_report, an_output_that_fails_is_told) {
    const temp_directory directory;
    const std::string path = capture_of(directory, "isdn-wrong-number");
    const int full = open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    const outcome got = run({.program = IFWATCH_READ_PROGRAM, .arguments = {"--report", path}, .output_fd = full});
    close(full);
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, HasSubstr("No space left on device"));
}

}  // namespace
}  // namespace ifwatch::test
