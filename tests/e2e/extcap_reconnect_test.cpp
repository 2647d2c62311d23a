// The analyser's plug-in with a router that is not there, that closes at once, or that says nothing: what is tried
// again, what is told, and what ends it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/plugged_tshark.h"
#include "support/plugin.h"
#include "support/process.h"
#include "support/programs.h"
#include "support/read_fifo.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"
#include "support/simulator.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;

using text_list = std::vector<std::string>;

constexpr const char* D_CHANNEL = "channel 0\ninterface 2100\nrecord R 1000\n 00 01 7F\n";
constexpr const char* B_CHANNEL = "channel 1\ninterface 2101\nrecord R 1000\n FF 03 C0 21 01 01 00 04\n";
constexpr std::uint8_t INFO = 11;  // an element of the list
constexpr const char* TOLD = "ifwatch-extcap: router 127.0.0.1";
constexpr const char* CLOSED = "the router closed the session during its set-up";

std::size_t count_of(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

class extcap_patience : public testing::Test {
protected:
    temp_directory directory;

    [[nodiscard]] command patiently(int port, const std::string& interfaces) const {
        return plugin(capture_arguments(port, directory.write("capture.pcapng", ""), {"--reconnect"}, interfaces));
    }

    /// Captures from a router that is there only after the first attempt, until it has said something further.
    outcome from_a_late_router(const std::string& interfaces, text_list options, const std::string& further) {
        const int port = free_port();
        process program(patiently(port, interfaces));
        EXPECT_TRUE(program.wait_for_errors("connect (Connection refused); trying again\n")) << program.errors();
        options.insert(options.end(), {"--port", std::to_string(port)});
        const simulator router({D_CHANNEL, B_CHANNEL}, options);
        EXPECT_TRUE(program.wait_for_errors(further)) << program.errors();
        program.send_signal(SIGTERM);
        return program.wait();
    }
};

TEST_F(extcap_patience, tells_of_a_refusal_behind_attempts_that_were_told) {
    const outcome got = from_a_late_router("2100", {"--fault", "refuse"}, "is not to be traced\n");
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, std::string(TOLD) + ": connect (Connection refused); trying again\n" + TOLD +
                              ": interface 2100 is not to be traced\n");
}

TEST_F(extcap_patience, tells_of_a_wrong_password_behind_attempts_that_were_told) {
    const outcome got = from_a_late_router("2100", {"--password", "other"}, "wrong password\n");
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, HasSubstr(std::string(TOLD) + ": wrong password\n"));
}

TEST_F(extcap_patience, tells_of_the_one_of_two_that_is_refused) {
    const outcome got = from_a_late_router("2100,2101", {"--fault", "refuse@2101", "--fault", "silence=9@2100"},
                                           "interface 2101: interface 2101 is not to be traced\n");
    EXPECT_EQ(got.status, 0) << "the other is traced";
    EXPECT_EQ(count_of(got.errors, TOLD), 3U) << got.errors;
}

/// A router that is reached, but closes: one that is still starting, or a port that is forwarded to nobody.
class extcap_closing_router : public extcap_patience {
protected:
    /// Tells it once, tries again, and captures when the router has come to itself.
    void expect_patience(process& program, int port) {
        EXPECT_TRUE(program.wait_for_errors(std::string(TOLD) + ": " + CLOSED + "; trying again\n"))
            << program.errors();
        simulator router({D_CHANNEL}, {"--port", std::to_string(port), "--once"});
        EXPECT_EQ(router.program().wait().status, 0) << "it was traced";
        program.send_signal(SIGTERM);
        const outcome got = program.wait();
        EXPECT_EQ(got.status, 0);
        EXPECT_EQ(count_of(got.errors, CLOSED), 1U) << got.errors;
    }
};

class extcap_closing_step : public extcap_closing_router, public testing::WithParamInterface<const char*> {};

TEST_P(extcap_closing_step, is_tried_again) {
    auto closing = std::make_unique<simulator>(text_list{D_CHANNEL}, text_list{"--close-after", GetParam()});
    const int port = closing->port();
    process program(patiently(port, "2100"));
    ASSERT_TRUE(program.wait_for_errors("\n")) << program.errors();
    closing.reset();
    expect_patience(program, port);
}

INSTANTIATE_TEST_SUITE_P(steps, extcap_closing_step, testing::Values("connect", "request"));

TEST_F(extcap_closing_router, is_tried_again_when_it_resets_the_connection) {
    auto resetting = std::make_unique<scripted_daemon>([](const tcp_peer& client) { client.reset(); });
    const int port = resetting->port();
    process program(patiently(port, "2100"));
    ASSERT_TRUE(program.wait_for_errors("\n")) << program.errors();
    resetting.reset();
    expect_patience(program, port);
}

TEST_F(extcap_closing_router, is_named_as_such_without_patience) {
    const simulator closing({D_CHANNEL}, {"--close-after", "connect"});
    const outcome got =
        run(plugin(capture_arguments(closing.port(), directory.write("capture.pcapng", ""), {}, "2100")));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, std::string(TOLD) + ": " + CLOSED + "\n");
}

/// A router that takes the question for its list and says nothing.
class extcap_silent_list : public extcap_patience {
protected:
    std::promise<void> asked;
    scripted_daemon router{[this](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        asked.set_value();
        client.receive_all();
    }};
    read_fifo fifo{directory.file("fifo")};

    [[nodiscard]] command capture() const { return plugin(capture_arguments(router.port(), fifo.name(), {}, "all")); }
    void wait_until_asked() { ASSERT_EQ(asked.get_future().wait_for(60s), std::future_status::ready); }
};

TEST_F(extcap_silent_list, does_not_hold_up_the_stop) {
    process program(capture());
    wait_until_asked();
    const outcome got = program.terminate();
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, "");
}

TEST_F(extcap_silent_list, does_not_hold_a_capture_whose_reader_has_gone) {
    process program(capture());
    wait_until_asked();
    fifo.close_end();
    const outcome got = program.wait();
    EXPECT_FALSE(got.timed_out);
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, "");
}

TEST(extcap_list, of_any_length_arrives) {
    constexpr std::uint32_t interfaces = 5000;
    const scripted_daemon router([](const tcp_peer& client) {
        log_in(client);
        for (std::uint32_t i = 0; i < interfaces; ++i) {
            const auto high = static_cast<int>(i >> 8);
            client.send_element(INFO, {0, 0x01, high, static_cast<int>(i & 0xFF), 0, 0, 0, 0});
        }
        client.send({0, 0, 0, 0});
        client.receive_all();
    });
    const outcome got = run(reload(router.port()));
    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_THAT(got.output, HasSubstr("{value=65536}"));
    EXPECT_THAT(got.output, HasSubstr("{value=70535}"));
    EXPECT_THAT(got.output, HasSubstr("{display=The whole router: 5000 interfaces}"));
}

/// What packets tell of gaps and of a clock that begins anew, as tshark shows it.
class extcap_notes : public testing::Test, protected plugged_tshark {
protected:
    const text_list patience = {"-o", "extcap.ifwatch.reconnect:true"};
    const text_list fields = {"frame.interface_name", "frame.time_epoch", "frame.comment"};

    static constexpr const char* ONE = "channel 0\ninterface 2100\nrecord R 500000\n 00 01 7F\n";
    static constexpr const char* OTHER = "channel 1\ninterface 2101\nrecord R 500000\n FF 03 C0 21 01 01 00 04\n";
};

TEST_F(extcap_notes, a_gap_goes_from_packet_to_packet_whatever_sessions_lie_between) {
    auto first = std::make_unique<simulator>(text_list{ONE}, text_list{"--fault", "silence=1"});
    const std::string port = std::to_string(first->port());
    process analyser(capture(first->port(), "2100", patience, fields));
    ASSERT_TRUE(analyser.wait_for_output("\n")) << analyser.errors();
    first.reset();
    {
        simulator empty({"channel 0\ninterface 2100\n"}, {"--port", port, "--once"});
        EXPECT_EQ(empty.program().wait().status, 0);
    }
    const simulator last({"channel 0\ninterface 2100\nrecord R 100\n 00 01 73\n"},
                         {"--port", port, "--fault", "silence=1"});
    ASSERT_TRUE(analyser.wait_for_output("began anew\n")) << analyser.output() << analyser.errors();
    const std::string shown = analyser.output();
    const auto number_behind = [&shown](const std::string& text) {
        return std::stod(shown.substr(shown.find(text) + text.size()));
    };
    // Both packets have the time of their arrival.
    const double between = number_behind("\t\nifwatch-2100\t") - number_behind("ifwatch-2100\t");
    EXPECT_NEAR(number_behind("gap of "), between, 0.1) << shown;
}

TEST_F(extcap_notes, stay_with_their_records_when_several_wait) {
    auto first = std::make_unique<simulator>(text_list{ONE, OTHER}, text_list{"--fault", "silence=9"});
    const std::string port = std::to_string(first->port());
    process analyser(capture(first->port(), "2100,2101", patience, fields));
    ASSERT_TRUE(analyser.wait_for_output("ifwatch-2100\t")) << analyser.errors();
    ASSERT_TRUE(analyser.wait_for_output("ifwatch-2101\t")) << analyser.errors();
    first.reset();
    const simulator second(
        {"channel 0\ninterface 2100\nrecord R 501500\n 00 01 7F\nrecord R 501600\n 00 01 73\n", OTHER},
        {"--port", port, "--fault", "restart=2@2100", "--fault", "silence=9"});
    ASSERT_TRUE(analyser.wait_for_output("began anew\n")) << analyser.output() << analyser.errors();
    EXPECT_THAT(analyser.output(),
                testing::ContainsRegex("ifwatch-2100\t[0-9.]+\tgap of [0-9.]+ s: the router closed the session\n"));
    EXPECT_THAT(analyser.output(), testing::ContainsRegex("ifwatch-2100\t[0-9.]+\tthe router's clock began anew\n"));
}

TEST_F(extcap_notes, of_a_restart_are_one_for_each_interface) {
    const simulator router(
        {"channel 0\ninterface 2100\nrecord R 500000\n 00 01 7F\nrecord R 500100\n 00 01 73\nrecord R 500200\n "
         "00 01 73\n",
         "channel 1\ninterface 2101\nrecord R 500050\n 01 7F\nrecord R 500150\n 01 73\nrecord R 500250\n 01 73\n"},
        {"--together", "2", "--fault", "restart=2"});
    const outcome got = run(capture(router.port(), "all", {"-o", "extcap.ifwatch.routertime:true"}, fields));
    EXPECT_EQ(got.status, 0) << got.errors;
    const std::string anew = "\tthe router's clock began anew\n";
    EXPECT_THAT(got.output, testing::StartsWith("ifwatch-2100\t500.000000000\t\nifwatch-2101\t500.050000000\t\n"));
    EXPECT_THAT(got.output, HasSubstr("ifwatch-2100\t0.000000000" + anew));
    EXPECT_THAT(got.output, HasSubstr("ifwatch-2101\t0.000000000" + anew));
    EXPECT_EQ(count_of(got.output, anew), 2U) << got.output;
}

/// Waits until the file is so large.
bool wait_for_size(const std::string& file, std::size_t size) {
    const auto until = std::chrono::steady_clock::now() + 60s;
    for (std::string text; text.size() < size; std::this_thread::sleep_for(1ms)) {
        if (!read_file(file, text) || std::chrono::steady_clock::now() > until) {
            return false;
        }
    }
    return true;
}

TEST_F(extcap_patience, an_interface_of_another_type_behind_the_gap_is_another_line) {
    auto first = std::make_unique<simulator>(text_list{D_CHANNEL}, text_list{"--fault", "silence=1"});
    const int port = first->port();
    process program(patiently(port, "2100"));
    const std::string file = directory.file("capture.pcapng");
    ASSERT_TRUE(wait_for_size(file, 200)) << program.errors();
    first.reset();
    std::string before;
    ASSERT_TRUE(read_file(file, before));
    const simulator second({"channel 1\ninterface 2100\nrecord R 9000\n FF 03 C0 21 01 01 00 04\n"},
                           {"--port", std::to_string(port), "--fault", "silence=1"});
    ASSERT_TRUE(wait_for_size(file, before.size() + 200)) << program.errors();
    EXPECT_EQ(program.terminate().status, 0);
    const outcome shown = run({.program = IFWATCH_READ_PROGRAM, .arguments = {"-2", "-p", file}});
    EXPECT_THAT(shown.output, HasSubstr("=== ifwatch-2100: ISDN B-channel\n"));
    EXPECT_THAT(shown.output, HasSubstr("LCP Configure-Request"));
}

/// Records of 1400 octets, one a millisecond.
std::string fast_lan(const std::string& index, int first_ms) {
    std::string text = "channel 6\ninterface " + index + "\nrecord R 1000\n 02*12 08 00 00*46\n";
    for (int i = 0; i < 60; ++i) {
        text += "record R " + std::to_string(first_ms + i) + "\n 02*12 08 00 00*1386\n";
    }
    return text;
}

TEST(extcap_burst, of_two_fast_lines_is_in_order_when_all_of_it_was_there_at_once) {
    const temp_directory directory;
    const std::string file = directory.write("capture.pcapng", "");
    simulator router({fast_lan("1000", 3100), fast_lan("1100", 3000)},
                     {"--together", "2", "--pace", "real", "--sessions", "2"});
    process program(plugin(capture_arguments(router.port(), file, {"--router-time"}, "1000,1100")));
    ASSERT_TRUE(wait_for_size(file, 400)) << "the first records, two seconds before the others";
    program.send_signal(SIGSTOP);
    EXPECT_EQ(router.program().wait().status, 0) << "all is sent";
    program.send_signal(SIGCONT);
    EXPECT_EQ(program.wait().status, 0);
    const command tshark = {
        .program = "tshark",
        .arguments = {"-n", "-r", file, "-Y", "frame.len > 1000", "-T", "fields", "-e", "frame.interface_name"},
        .timeout = 60s};
    std::string expected;
    for (const char* name : {"ifwatch-1100\n", "ifwatch-1000\n"}) {
        for (int i = 0; i < 60; ++i) {
            expected += name;
        }
    }
    EXPECT_EQ(run(tshark).output, expected);
}

}  // namespace
}  // namespace ifwatch::test
