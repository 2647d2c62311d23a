// What strangers sent, on a real terminal: none of it acts there. Into a file or a pipe it goes as it came.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/pseudo_terminal.h"
#include "support/session_script.h"
#include "support/simulator.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using text_list = std::vector<std::string>;

// An escape, a bell, a control sequence introducer of eight bits, a delete, a carriage return and a backspace.
constexpr const char* HOSTILE = "a\x1b\x07\x9b\x7f\r\bz";
constexpr const char* HOSTILE_IN_A_CASE = " 61 1B 07 9B 7F 0D 08 7A ";
constexpr const char* SHOWN = R"(a\x1b\x07\x9b\x7f\x0d\x08z)";
constexpr const char* BACKSPACES = "\b\b\b\b\b\b\b\b";

/// Opens a pipe to read when it has been made and is opened to be written; -1 when that takes too long.
int open_when_there(const std::string& name) {
    for (int i = 0; i < 10000 && access(name.c_str(), F_OK) != 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return open(name.c_str(), O_RDONLY | O_CLOEXEC);
}

bool acts(char character) { return (character < ' ' || character > '~') && character != '\n' && character != '\t'; }

/// The text with HOSTILE as a terminal is to show it. Nothing else in it may act.
std::string as_shown(std::string text) {
    const std::string hostile = HOSTILE;
    for (std::size_t at = text.find(hostile); at != std::string::npos; at = text.find(hostile, at)) {
        text.replace(at, hostile.size(), SHOWN);
    }
    EXPECT_EQ(std::count_if(text.begin(), text.end(), acts), 0) << text;
    return text;
}

// --- What crosses the line

struct hostile_trace {
    const char* name;
    const char* option;
    std::string records;  // of a case file
    text_list lines;      // what of it is printed, as it came
};

void PrintTo(const hostile_trace& trace, std::ostream* out) { *out << trace.name; }

const std::string X = HOSTILE_IN_A_CASE;
const std::string RAW = HOSTILE;

const hostile_trace TRACES[] = {
    {"pap_names",
     "-p",
     "record R 1000\n FF 03 C0 23 01 01 00 16 08" + X + "08" + X + "\n",
     {"PAP Authenticate-Request Peer-ID " + RAW + " Password " + RAW + "\n"}},
    {"chap_names",
     "-p",
     "record R 1000\n FF 03 C2 23 01 01 00 1D 10 A1*16" + X + "\n" +  //
         "record X 1000\n FF 03 C2 23 04 01 00 0C" + X + "\n",
     {"CHAP Challenge Value Length 16 Name " + RAW + "\n", "CHAP Failure Message " + RAW + "\n"}},
    {"file_transfer_names",
     "-e",
     "record R 1000\n 01 00 10 01 00 20 14 41 08" + X + "42 08" + X + "\n" +  //
         "record R 1000\n 01 00 10 01 00 2F 0C 30 0A 22 08" + X + "\n",
     {"Calling address:        " + RAW + "\n", "Called address:         " + RAW + "\n",
      "Transfer name:          " + RAW + "\n"}},
    {"file_transfer_directories",
     "-e",
     "record R 1000\n 01 00 10 01 00 32 03 43 01 24\n"
     "record R 1000\n 01 00 10 01 00 2F 1A 30 06 22 04 \"NAME\"" +
         X + "0D 0A" + X + "\n",
     {"DIRECTORY:\n\t\t\t" + RAW + "\n\t\t\t" + RAW + "\n"}},
    {"t30_identification",
     "-F",
     "record R 1000\n 00 FF 03 40 7A 08 0D 7F 9B 07 1B 61\n",  // the last character comes first
     {"CSI \"" + RAW + "\"\n"}},
    {"t30_at_text", "-A", "record R 1000\n FF" + X + "\n", {"\t" + RAW + "\n"}},
};

class hostile : public testing::TestWithParam<hostile_trace> {
protected:
    simulator router{{"channel 1\n" + GetParam().records}};
    command watching = router.watching({GetParam().option});
};

TEST_P(hostile, text_goes_into_a_pipe_as_it_came) {
    const outcome got = run(watching);
    EXPECT_EQ(got.status, 0);
    for (const std::string& line : GetParam().lines) {
        EXPECT_THAT(got.output, HasSubstr(line));
    }
}

TEST_P(hostile, text_is_visible_on_a_terminal) {
    const std::string expected = as_shown(run(watching).output);
    EXPECT_THAT(expected, HasSubstr(SHOWN));
    EXPECT_EQ(run_on_terminal(watching, on_terminal::OUTPUT).output, expected);
    EXPECT_EQ(run_on_terminal(watching, on_terminal::BOTH).output, expected);
}

TEST_P(hostile, text_goes_into_a_pipe_as_it_came_beside_a_terminal) {
    EXPECT_EQ(run_on_terminal(watching, on_terminal::ERRORS).output, run(watching).output);
}

INSTANTIATE_TEST_SUITE_P(terminal, hostile, testing::ValuesIn(TRACES),
                         [](const auto& trace) { return std::string(trace.param.name); });

TEST(terminal, shows_the_text_of_a_channel_as_a_pipe_gets_it) {
    const simulator router({"channel 1\nrecord R 1000\n 01 00" + X + "\n"});
    const command watching = router.watching({"-t"});
    const outcome got = run(watching);
    EXPECT_THAT(got.output, HasSubstr("\t\ta  1B 07 9B 7F 0D 08 z  \n"));
    EXPECT_EQ(run_on_terminal(watching, on_terminal::BOTH).output, got.output);
}

// --- What the router tells

TEST(terminal, shows_what_the_router_tells_of_an_error) {
    const scripted_daemon daemon(replying({0, 0, 8, 5, 'a', 0x1B, 0x07, 0x9B, 0x7F, '\r', '\b', 'z'}));
    const command tracer = tracing(daemon, {"--pwd=x", "127.0.0.1", "1000"});
    const std::string expected = connected_to(daemon) + report_of(NO_TYPE, SHOWN);
    EXPECT_EQ(run_on_terminal(tracer, on_terminal::ERRORS).errors, expected);
    EXPECT_EQ(run_on_terminal(tracer, on_terminal::BOTH).errors, expected);
    EXPECT_EQ(run_on_terminal(tracer, on_terminal::OUTPUT).errors, connected_to(daemon) + report_of(NO_TYPE, HOSTILE));
}

TEST(terminal, shows_what_the_router_tells_in_the_list_of_its_interfaces) {
    const scripted_daemon daemon(replying({0,   0,    8,    11,   0,    0,    0x08, 0x34, 0, 0, 0, 0,  //
                                           0,   0,    8,    5,                                         //
                                           'a', 0x1B, 0x07, 0x9B, 0x7F, '\r', '\b', 'z'}));
    const command tracer = tracing(daemon, {"--pwd=x", "127.0.0.1"});
    const std::string list = connected_to(daemon) + "Ifc:    2100 Type:   0 (ISDN D-channel)\n ";
    EXPECT_EQ(run_on_terminal(tracer, on_terminal::ERRORS).errors, list + SHOWN + "\n");
    EXPECT_EQ(run_on_terminal(tracer, on_terminal::BOTH).errors, list + SHOWN + "\n");
    EXPECT_EQ(run_on_terminal(tracer, on_terminal::OUTPUT).errors, list + HOSTILE + "\n");
}

// --- The counter

/// A run that counts two records.
struct counted_trace {
    temp_directory directory;
    scripted_daemon daemon{serving(2)};
    command tracer = tracing(daemon, {"-V1", "--pcap-file", "--ofile=" + directory.file("out"), "127.0.0.1", "1000"});
};

TEST(terminal, is_counted_on_as_a_pipe_is) {
    const counted_trace trace;
    const std::string counted =
        std::string("Packets captured:        0") + BACKSPACES + "       1" + BACKSPACES + "       2" + STREAM_END;
    EXPECT_THAT(run_on_terminal(trace.tracer, on_terminal::ERRORS).errors, EndsWith(counted));
    EXPECT_THAT(run_on_terminal(trace.tracer, on_terminal::BOTH).errors, EndsWith(counted));
    EXPECT_THAT(run(trace.tracer).errors, EndsWith(counted));
}

TEST(terminal, gets_no_backspaces_from_a_text_like_the_counter) {
    const scripted_daemon daemon([](const tcp_peer& client) {
        log_in(client);
        client.send_element(5, std::string(BACKSPACES) + "       1");
    });
    const outcome got = run_on_terminal(tracing(daemon, {"--pwd=x", "127.0.0.1"}), on_terminal::ERRORS);
    EXPECT_EQ(got.errors, connected_to(daemon) + R"( \x08\x08\x08\x08\x08\x08\x08\x08       1)" + "\n");
}

// --- How it is written

TEST(terminal, is_still_known_when_the_system_calls_are_given_up) {
    // The first text to it is that of a record.
    const simulator router({"channel 1\n" + TRACES[0].records});
    command watching = router.watching({"-p"});
    watching.program = "sh";
    watching.arguments.insert(watching.arguments.begin(), {"-c", R"(exec "$0" "$@" 2>/dev/null)", IFWATCH_PROGRAM});
    EXPECT_THAT(run_on_terminal(watching, on_terminal::OUTPUT).output, HasSubstr(SHOWN));
}

TEST(terminal, that_takes_no_more_at_once_misses_nothing) {
    std::string records;
    for (int i = 0; i < 200; ++i) {
        records += "record R 1000\n FF 03 C0 23 02 01 00 FF FA 1B*250\n";
    }
    const simulator router({"channel 1\n" + records});
    pseudo_terminal screen;
    fcntl(screen.stream(), F_SETFL, O_RDWR | O_NONBLOCK);
    command watching = router.watching({"-p"});
    const std::string in_a_pipe = run(watching).output;
    watching.output_fd = screen.stream();
    EXPECT_EQ(run(watching).status, 0);
    std::string expected;
    for (const char character : in_a_pipe) {
        expected += character == '\x1b' ? R"(\x1b)" : std::string(1, character);
    }
    ASSERT_GT(expected.size(), 200000U);
    EXPECT_EQ(screen.take(), expected);
}

TEST(terminal, that_is_gone_ends_the_run) {
    std::promise<void> gone;
    const scripted_daemon daemon([&gone](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send({CHANNEL_TYPE_LAN});
        gone.get_future().wait();
        client.send(trace_record(1, std::vector<std::uint8_t>(14, 0xA1)));
        client.receive_all();
    });
    pseudo_terminal screen;
    command tracer = tracing(daemon, {"-V1", "127.0.0.1", "1000"});
    tracer.output_fd = screen.stream();
    process running(tracer);
    EXPECT_TRUE(running.wait_for_errors("connected to"));
    screen.hang_up();
    gone.set_value();
    const outcome got = running.wait();
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith("ERROR write (Input/output error)\n"));
}

TEST(terminal, shows_a_name_that_is_told_at_a_signal) {
    const temp_directory directory;
    const std::string name = directory.file(HOSTILE);
    const scripted_daemon daemon(serving(0, true));
    pseudo_terminal errors;
    command tracer = tracing(daemon, {"-V1", "--pcap-pipe", "--ofile=" + name, "127.0.0.1", "1000"});
    tracer.errors_fd = errors.stream();
    process running(tracer);
    const int reader = open_when_there(name);
    ASSERT_GE(reader, 0);
    unlink(name.c_str());
    EXPECT_EQ(running.terminate().status, 1);
    close(reader);
    const std::string told = errors.take();
    EXPECT_THAT(told, HasSubstr("ERROR cannot delete " + directory.file(SHOWN) + " (No such file or directory)\n"));
    EXPECT_EQ(std::count_if(told.begin(), told.end(), acts), 0);
}

// --- The tools

TEST(terminal, shows_what_the_simulator_tells_of_a_file) {
    const temp_directory directory;
    const command sim = {IFWATCH_SIM_PROGRAM,
                         {directory.write("\x9b"
                                          "2J.case",
                                          "channel \x9b\x1b\n")}};
    const std::string told = run_on_terminal(sim, on_terminal::BOTH).errors;
    EXPECT_THAT(told, StartsWith("ifwatch-sim: " + directory.file(R"(\x9b2J.case)") + ":1: "));
    EXPECT_THAT(told, HasSubstr(R"(\x9b\x1b)"));
    EXPECT_EQ(std::count_if(told.begin(), told.end(), acts), 0);
    EXPECT_THAT(run(sim).errors, HasSubstr("\x9b"
                                           "2J.case:1: "));
}

TEST(terminal, shows_a_case_that_the_simulator_imports) {
    const temp_directory directory;
    const command sim = {IFWATCH_SIM_PROGRAM, {"import", directory.write("\x9b.pcap", pcap_of(1))}};
    const std::string in_a_pipe = run(sim).output;
    EXPECT_THAT(in_a_pipe, StartsWith("# \x9b.pcap: "));
    EXPECT_EQ(run_on_terminal(sim, on_terminal::OUTPUT).output, R"(# \x9b)" + in_a_pipe.substr(3));
}

TEST(terminal, shows_what_the_router_tells_the_plug_in) {
    const scripted_daemon daemon(replying({0, 0, 8, 5, 'a', 0x1B, 0x07, 0x9B, 0x7F, '\r', '\b', 'z'}));
    command plugin = {IFWATCH_EXTCAP_PROGRAM,
                      {"--extcap-interface", "ifwatch", "--extcap-config", "--extcap-reload-option", "interface",
                       "--host", "127.0.0.1", "--port", std::to_string(daemon.port())}};
    plugin.environment = {{"TRACE_PWD", "x"}};
    EXPECT_EQ(run_on_terminal(plugin, on_terminal::ERRORS).errors,
              std::string("ifwatch-extcap: router 127.0.0.1: ") + SHOWN + "\n");
    EXPECT_EQ(run(plugin).errors, std::string("ifwatch-extcap: router 127.0.0.1: ") + HOSTILE + "\n");
}

TEST(terminal, shows_what_the_test_runner_tells_of_a_case) {
    const temp_directory directory;
    const command runner = {GOLDEN_RUNNER_PROGRAM, {directory.write("\x9b.case", "channel 1\noptions -p\n")}};
    EXPECT_EQ(run_on_terminal(runner, on_terminal::ERRORS).errors,
              directory.file(R"(\x9b.case)") + ": no expected text: " + directory.file(R"(\x9b.expected)") + "\n");
}

}  // namespace
}  // namespace ifwatch::test
