// What a user meets at the shell: usage, refused command lines, what is sent for an accepted one, and how a run ends.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <future>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr char USAGE_START[] =
    "\nKavrin/Velmora remote interface tracer ($Revision: 2.43 $)\n\n"
    "Usage:\n  ifwatch [opts] <routerip> [<channel> <unit> <slot> or <ifindex>]\n";
constexpr char HELP_START[] =
    "\nKavrin/Velmora remote interface tracer ($Revision: 2.43 $)\n\nExtended help and examples\n";

outcome ifwatch(std::vector<std::string> arguments) {
    return run({.program = IFWATCH_PROGRAM, .arguments = std::move(arguments)});
}

/// What a run asks of a version-1 daemon: its trace request.
std::vector<std::uint8_t> request_of(std::vector<std::string> arguments) {
    std::promise<std::vector<std::uint8_t>> request;
    const scripted_daemon daemon(
        [&request](const tcp_peer& client) { request.set_value(client.receive(TRACE_REQUEST_OCTETS)); });
    arguments.insert(arguments.begin(), {"-V1", daemon.port_option(), "127.0.0.1"});
    ifwatch(std::move(arguments));
    return request.get_future().get();
}

/// What a run tells a version-2 daemon behind its trace request.
std::vector<std::uint8_t> addinfo_of(std::vector<std::string> arguments) {
    std::promise<std::vector<std::uint8_t>> addinfo;
    const scripted_daemon daemon([&addinfo](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send_element(5, "enough");
        addinfo.set_value(client.receive_all());
    });
    arguments.insert(arguments.begin(), {"-V2", daemon.port_option(), "127.0.0.1", "1000"});
    ifwatch(std::move(arguments));
    return addinfo.get_future().get();
}

TEST(usage, is_shown_for_a_wrong_number_of_arguments) {
    const std::vector<std::vector<std::string>> wrong = {{}, {"router", "1", "2"}, {"router", "1", "2", "3", "4"}};
    for (const auto& arguments : wrong) {
        const outcome got = ifwatch(arguments);
        EXPECT_EQ(got.status, 1);
        EXPECT_EQ(got.output, "");
        EXPECT_THAT(got.errors, StartsWith(USAGE_START));
    }
}

TEST(usage, follows_the_complaint_about_an_option) {
    const outcome got = ifwatch({"--colour", "router"});
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, StartsWith("ifwatch: unrecognized option '--colour'\n" + std::string(USAGE_START)));
}

TEST(usage, extended_help) {
    const outcome got = ifwatch({"--help"});
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.output, "");
    EXPECT_THAT(got.errors, StartsWith(HELP_START));
}

TEST(usage, the_program_is_named_as_it_was_called) {
    const temp_directory directory;
    const std::string other_name = directory.file("x");
    ASSERT_EQ(symlink(IFWATCH_PROGRAM, other_name.c_str()), 0);
    const outcome got = run({.program = other_name, .arguments = {"-y"}});
    EXPECT_THAT(got.errors, StartsWith("x: invalid option -- 'y'\n"));
    EXPECT_THAT(got.errors, HasSubstr("Usage:\n  x [opts] "));
    EXPECT_THAT(got.errors, Not(HasSubstr(directory.path())));
    const scripted_daemon daemon(serving(0));
    const outcome traced = run({.program = other_name, .arguments = {"-V1", daemon.port_option(), "127.0.0.1", "0"}});
    EXPECT_THAT(traced.errors, StartsWith("x: connected to 127.0.0.1:"));
}

TEST(filters, that_do_not_fit_are_refused_before_anything_is_connected) {
    const outcome got = ifwatch({"-P1", "-I", std::string(1005, 'x'), "127.0.0.1", "1000"});
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, StartsWith("ERROR filters too long (1025 > 1024 octets)\n" + std::string(USAGE_START)));
    EXPECT_THAT(got.errors, Not(HasSubstr("connect (")));
}

TEST(filters, reach_the_daemon_as_they_were_typed) {
    const std::vector<std::uint8_t> expected = {0xFF, 0xFF, 0xFF, 6, 0, 0, 3,   'I', ':', ':', '6', 0,
                                                0,    0,    'o',  0, 0, 5, 'I', '!', ':', ':', '1', '7',
                                                0,    0,    0,    0, 0, 0, 0,   3,   0,   0,   0,   0};
    EXPECT_EQ(addinfo_of({"-I", "::6", "-o", "-I", "!::17"}), expected);
}

TEST(request, names_the_interface) {
    const std::vector<std::uint8_t> slot_2_unit_1 = {0, 0, 0, 1, 0, 0, 0,    2,    0,    0,
                                                     0, 1, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(request_of({"0", "1", "2"}), slot_2_unit_1);
    EXPECT_EQ(request_of({"2100"}), slot_2_unit_1);
    const std::vector<std::uint8_t> virtual_interface = {0, 0, 0, 1,    0,    0,    0, 0, 0, 0,
                                                         0, 0, 0, 0x01, 0x86, 0xA1, 0, 0, 0, 68};
    EXPECT_EQ(request_of({"-r68", "100001"}), virtual_interface);
    const std::vector<std::uint8_t> wide_unit = {0, 0,  0, 1, 0, 0,  0,    210,  0,    0,
                                                 0, 23, 0, 0, 0, 45, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(request_of({"212345"}), wide_unit);
}

TEST(password, does_not_show_in_the_process_list) {
    const scripted_daemon daemon(serving(0, true));
    process tracer(
        {.program = IFWATCH_PROGRAM,
         .arguments = {"-V1", daemon.port_option(), "--pwd=s3cret", "--pwd", "an0ther", "127.0.0.1", "1000"}});
    ASSERT_TRUE(tracer.wait_for_errors("Type: 6 (LAN)"));
    std::string arguments;
    ASSERT_TRUE(read_file("/proc/" + std::to_string(tracer.id()) + "/cmdline", arguments));
    EXPECT_THAT(arguments, HasSubstr("--pwd="));
    EXPECT_THAT(arguments, Not(HasSubstr("s3cret")));
    EXPECT_THAT(arguments, Not(HasSubstr("an0ther")));
}

TEST(run, decodes_to_the_terminal_and_ends_with_status_0) {
    const scripted_daemon daemon(serving(2));
    const outcome got = ifwatch({"-V1", daemon.port_option(), "127.0.0.1", "1000"});
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.output, StartsWith("000001.000 X DATA[0014]   \n"));
    EXPECT_THAT(got.output, HasSubstr("\n000002.000 X DATA[0014]   \n"));
    EXPECT_EQ(got.errors, "ifwatch: connected to 127.0.0.1:" + std::to_string(daemon.port()) +
                              "\nIfc:1000 (Chan:0 Unit:0 Slot:1) Type: 6 (LAN)\n \ntrc hdr too short! = 0<22\n");
}

/// A run whose standard output is a full device.
outcome ifwatch_to_full_device(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"-c", R"(exec "$0" "$@" > /dev/full)", IFWATCH_PROGRAM});
    return run({.program = "sh", .arguments = std::move(arguments)});
}

TEST(full_output, ends_a_trace_with_status_1) {
    const scripted_daemon daemon(serving(2));
    const outcome got = ifwatch_to_full_device({"-V1", daemon.port_option(), "127.0.0.1", "1000"});
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, HasSubstr("\nERROR write (No space left on device)\n"));
}

TEST(full_output, is_noticed_when_only_the_session_prints) {
    const scripted_daemon daemon([](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send_element(11, {0, 0, 0x03, 0xE8, 0, 6, 0, 0});
        client.send_element(0);
    });
    const outcome got = ifwatch_to_full_device({"-V2", "-vvv", daemon.port_option(), "127.0.0.1", "1000"});
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith(" (LAN)\n \nERROR write (No space left on device)\n"));
}

TEST(full_output, ends_the_channel_test) {
    std::atomic<int> connections = 0;
    const scripted_daemon daemon([&connections](const tcp_peer& client) {
        ++connections;
        client.receive(TRACE_REQUEST_OCTETS);
    });
    const outcome got = ifwatch_to_full_device({"-V1", daemon.port_option(), "127.0.0.1"});
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, "ERROR write (No space left on device)\n");
    EXPECT_LE(connections, 1) << "no channel is probed";
}

}  // namespace
}  // namespace ifwatch::test
