// What ifwatch-read does on a real terminal: colours, progress, and what strangers' control characters look like there.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "support/octet_pipe.h"
#include "support/pcap_octets.h"
#include "support/process.h"
#include "support/programs.h"
#include "support/pseudo_terminal.h"
#include "support/shown_capture.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using octet_list = std::vector<std::uint8_t>;

/// A PAP request whose name holds what would clear a screen.
octet_list hostile_login() {
    octet_list frame = {0xFF, 0x03, 0xC0, 0x23, 1, 1, 0, 12, 4, 0x1B, '[', '2', 'J', 2, 'p', 0x9B};
    return frame;
}

class read_on_terminal : public testing::Test {
protected:
    outcome show(std::vector<std::string> arguments, on_terminal streams,
                 std::vector<std::pair<std::string, std::string>> environment = {}) const {
        arguments.push_back(file);
        return run_on_terminal(
            {.program = IFWATCH_READ_PROGRAM, .arguments = std::move(arguments), .environment = std::move(environment)},
            streams);
    }

    void write_capture(std::uint32_t link_type, const octet_list& packet, int count = 1) const {
        pcap_octets octets;
        octets.header(link_type);
        for (int i = 0; i < count; ++i) {
            octets.packet(static_cast<std::uint32_t>(i) + 1, 0, packet);
        }
        ASSERT_TRUE(write_file(file, octets.text()));
    }

    /// Shows files in hexadecimal with the error stream on a terminal. The output is taken when a second has passed;
    /// until then the reader waits for room in the pipe.
    static outcome show_slowly(std::vector<std::string> files) {
        files.insert(files.begin(), "-h");
        pseudo_terminal screen;
        octet_pipe output;
        process running({.program = IFWATCH_READ_PROGRAM,
                         .arguments = std::move(files),
                         .output_fd = output.writer(),
                         .errors_fd = screen.stream()});
        std::this_thread::sleep_for(std::chrono::milliseconds(1100));
        std::array<char, 65536> block{};
        std::thread taker([&] {
            while (read(output.reader(), block.data(), block.size()) > 0) {
            }
        });
        outcome got = running.wait();
        output.close_writer();
        taker.join();
        got.errors = screen.take();
        return got;
    }

    temp_directory directory;
    std::string file = directory.file("a.pcap");
};

TEST_F(read_on_terminal, the_output_is_coloured) {
    write_capture(1, ethernet_frame());
    const outcome got = show({"-h"}, on_terminal::OUTPUT, {{"NO_COLOR", ""}});
    EXPECT_THAT(got.output, StartsWith("\x1b[1m000001.000 R DATA[0060]   \x1b[0m\n\x1b[2m      0000: ff"));
    EXPECT_THAT(got.errors, Not(HasSubstr("\x1b")));
}

TEST_F(read_on_terminal, the_output_has_no_colours_where_none_are_wanted) {
    write_capture(1, ethernet_frame());
    EXPECT_THAT(show({"-h"}, on_terminal::OUTPUT, {{"NO_COLOR", "1"}}).output, Not(HasSubstr("\x1b")));
    EXPECT_THAT(show({"-h", "--color=never"}, on_terminal::OUTPUT).output, Not(HasSubstr("\x1b")));
    EXPECT_THAT(show({"-h", "--color"}, on_terminal::OUTPUT, {{"NO_COLOR", "1"}}).output, StartsWith("\x1b[1m"));
}

TEST_F(read_on_terminal, what_a_stranger_sent_does_not_act_with_colours_or_without) {
    write_capture(9, hostile_login());
    for (const char* const color : {"--color=always", "--color=never"}) {
        const outcome got = show({"-p", color}, on_terminal::OUTPUT);
        EXPECT_THAT(got.output, HasSubstr("\\x1b[2J")) << color;
        EXPECT_THAT(got.output, Not(HasSubstr("\x1b[2J"))) << color;
        EXPECT_THAT(got.output, Not(HasSubstr("\x9b"))) << color;
    }
    // In a pipe, too, when colours are asked for; as it was when they are not.
    EXPECT_THAT(run({IFWATCH_READ_PROGRAM, {"-p", "--color=always", file}}).output, HasSubstr("\\x1b[2J"));
    EXPECT_THAT(run({IFWATCH_READ_PROGRAM, {"-p", file}}).output, HasSubstr("\x1b[2J"));
}

TEST_F(read_on_terminal, a_short_run_shows_no_progress) {
    write_capture(1, ethernet_frame());
    EXPECT_EQ(show({}, on_terminal::ERRORS).errors, "ifwatch-read: 1 packet shown\n");
}

TEST_F(read_on_terminal, progress_shows_after_a_second_and_is_gone_at_the_end) {
    write_capture(1, ethernet_frame(), 20000);
    const outcome got = show_slowly({file});
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.errors, HasSubstr(" % read, "));
    EXPECT_THAT(got.errors, EndsWith("\r\x1b[Kifwatch-read: 20000 packets shown\n"));
}

TEST_F(read_on_terminal, progress_is_that_of_all_files) {
    // Nothing is shown of the first, which is read at once; the second is at its beginning when the line appears.
    write_capture(201, ethernet_frame(), 20000);
    const std::string first = directory.file("first.pcap");
    std::filesystem::rename(file, first);
    write_capture(1, ethernet_frame(), 20000);
    const std::string empty = directory.write("empty.pcap", "");
    const outcome got = show_slowly({first, empty, file});
    EXPECT_EQ(got.status, 1) << "of the empty file";
    const std::size_t line = got.errors.find(" % read, ");
    ASSERT_NE(line, std::string::npos) << got.errors;
    EXPECT_GE(std::stoi(got.errors.substr(line - 3)), 50);
    EXPECT_GE(std::stoi(got.errors.substr(line + 9)), 20000);
    EXPECT_THAT(got.errors,
                EndsWith("\r\x1b[Kifwatch-read: 20000 packets shown, 20000 of link type 201 (no decoder)\n"));
}

TEST_F(read_on_terminal, a_terminal_as_its_input_is_a_mistake) {
    const pseudo_terminal keyboard;
    process running({.program = IFWATCH_READ_PROGRAM, .input_fd = keyboard.stream()});
    const outcome got = running.wait();
    EXPECT_EQ(got.status, 2);
    EXPECT_EQ(got.errors, "ifwatch-read: no FILE is given, and the standard input is a terminal (--help tells more)\n");
}

}  // namespace
}  // namespace ifwatch::test
