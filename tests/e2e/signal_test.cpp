// Signals in every state of a run: one that ends it, two at once, and one that only holds it up.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "support/conversation.h"
#include "support/process.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;
using testing::AnyOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

bool exists(const std::string& path) {
    struct stat entry {};
    return lstat(path.c_str(), &entry) == 0;
}

class ending : public testing::TestWithParam<int> {
protected:
    temp_directory directory;
    std::string name = directory.file("out");
    std::string option = "--ofile=" + name;

    /// The signal ends a program that waits and has no pipe to remove. Returns what it told.
    static std::string expect_default_action(process& tracer) {
        tracer.send_signal(GetParam());
        const outcome got = tracer.wait();
        EXPECT_EQ(got.signal, GetParam());
        EXPECT_EQ(got.output, "");
        return got.errors;
    }
    /// The signal ends a program that has made a pipe.
    outcome expect_removal(process& tracer) const {
        tracer.send_signal(GetParam());
        const outcome got = tracer.wait();
        EXPECT_EQ(got.status, 1);
        EXPECT_FALSE(exists(name));
        return got;
    }
};

TEST_P(ending, while_the_daemon_is_silent_behind_each_octet) {
    for (const conversation& talk : conversations()) {
        // The pipe is made when the session stands: up to there a signal finds none.
        for (std::size_t octets = 0; octets < talk.session_octets; ++octets) {
            std::promise<void> silent;
            const scripted_daemon daemon([&](const tcp_peer& client) {
                talk.play(client, octets);
                silent.set_value();
                client.receive_all();
            });
            process tracer(tracing(daemon, {talk.option, "--pwd=x", "--pcap-pipe", option, "127.0.0.1", "1000"}));
            EXPECT_EQ(silent.get_future().wait_for(10s), std::future_status::ready);
            ASSERT_EQ(expect_default_action(tracer), connected_to(daemon)) << talk.option << " " << octets;
        }
    }
    EXPECT_FALSE(exists(name));
}

TEST_P(ending, while_the_stream_is_silent_behind_each_octet) {
    const conversation& talk = conversations().front();
    for (std::size_t octets = talk.session_octets; octets < talk.all_octets; ++octets) {
        const scripted_daemon daemon([&](const tcp_peer& client) {
            talk.play(client, octets);
            client.receive_all();
        });
        process tracer(tracing(daemon, {"-V1", "127.0.0.1", "1000"}));
        ASSERT_TRUE(tracer.wait_for_errors("(LAN)\n \n"));
        ASSERT_EQ(expect_default_action(tracer), connected_to(daemon) + report_of(CONVERSATION_TYPE, "")) << octets;
    }
}

TEST_P(ending, while_the_password_is_asked_for) {
    const scripted_daemon daemon([](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send_element(2, {3});
        client.send_element(10, {1, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88});
        client.receive_all();
    });
    int input[2];
    ASSERT_EQ(pipe2(input, O_CLOEXEC), 0);
    command what = tracing(daemon, {"--pcap-pipe", option, "127.0.0.1", "1000"});
    what.input_fd = input[0];
    process tracer(what);
    EXPECT_TRUE(tracer.wait_for_errors("Enter remote password: "));
    EXPECT_EQ(expect_default_action(tracer), connected_to(daemon) + "Enter remote password: ");
    close(input[0]);
    close(input[1]);
}

TEST_P(ending, while_the_router_does_not_answer) {
    // Nobody accepts, and the one connection that waits for it leaves no room for another.
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);  // as the socket calls take it
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(listener, generic, length), 0);
    ASSERT_EQ(listen(listener, 0), 0);
    ASSERT_EQ(getsockname(listener, generic, &length), 0);
    const int port = ntohs(address.sin_port);
    const tcp_client waiting(port);
    const std::string told = "try connect to 127.0.0.1:" + std::to_string(port) + "\n";
    process tracer({.program = IFWATCH_PROGRAM,
                    .arguments = {"-vv", "-P" + std::to_string(port), "--pcap-pipe", option, "127.0.0.1", "1000"}});
    EXPECT_TRUE(tracer.wait_for_errors(told));
    EXPECT_EQ(expect_default_action(tracer), told);
    close(listener);
}

TEST_P(ending, while_the_interfaces_are_listed) {
    const scripted_daemon daemon([](const tcp_peer& client) {
        log_in(client);
        client.send_element(11, {0, 0, 3, 0xE8, 0, 6, 0, 0});
        client.receive_all();
    });
    process tracer(tracing(daemon, {"--pwd=x", "127.0.0.1"}));
    EXPECT_TRUE(tracer.wait_for_errors("(LAN)\n"));
    EXPECT_EQ(expect_default_action(tracer), connected_to(daemon) + "Ifc:    1000 Type:   6 (LAN)\n");
}

TEST_P(ending, while_a_channel_is_tested) {
    const scripted_daemon daemon([](const tcp_peer& client) { client.receive_all(); });
    process tracer(tracing(daemon, {"-V1", "127.0.0.1"}));
    EXPECT_TRUE(tracer.wait_for_output("ChMax Unit Slot ChType\n"));
    tracer.send_signal(GetParam());
    const outcome got = tracer.wait();
    EXPECT_EQ(got.signal, GetParam());
    EXPECT_EQ(got.output, "Testing available trace channels:\nChMax Unit Slot ChType\n");
    EXPECT_EQ(got.errors, "");
}

/// Waits until nothing more goes into a pipe that nobody reads.
void wait_until_full(int fd) {
    const auto until = std::chrono::steady_clock::now() + 10s;
    int held = 0;
    for (int before = -1; held != before || held < 2048;) {
        before = held;
        std::this_thread::sleep_for(20ms);
        ASSERT_EQ(ioctl(fd, FIONREAD, &held), 0);
        ASSERT_LT(std::chrono::steady_clock::now(), until);
    }
}

TEST_P(ending, while_the_reader_of_the_pipe_is_slow) {
    const scripted_daemon daemon(serving(250, true));
    process tracer(tracing(daemon, {"-V1", "-v", "--pcap-pipe", option, "127.0.0.1", "1000"}));
    ASSERT_TRUE(tracer.wait_for_errors("open file"));
    const int reader = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    fcntl(reader, F_SETPIPE_SZ, 1);
    wait_until_full(reader);
    EXPECT_THAT(expect_removal(tracer).errors, EndsWith("got signal " + std::to_string(GetParam()) + "\n\n"));
    close(reader);
}

TEST_P(ending, while_the_reader_of_the_output_is_slow) {
    const scripted_daemon daemon(serving(250, true));
    int output[2];
    ASSERT_EQ(pipe2(output, O_CLOEXEC), 0);
    fcntl(output[0], F_SETPIPE_SZ, 1);
    command what = tracing(daemon, {"-V1", "-v", "-t", "--print", "--pcap-pipe", option, "127.0.0.1", "1000"});
    what.output_fd = output[1];
    process tracer(what);
    close(output[1]);
    ASSERT_TRUE(tracer.wait_for_errors("open file"));
    process reader({.program = "cat", .arguments = {name}});
    wait_until_full(output[0]);
    EXPECT_THAT(expect_removal(tracer).errors, EndsWith("got signal " + std::to_string(GetParam()) + "\n\n"));
    close(output[0]);
}

INSTANTIATE_TEST_SUITE_P(hang_up_interrupt_terminate, ending, testing::Values(SIGHUP, SIGINT, SIGTERM),
                         [](const auto& test) { return "signal_" + std::to_string(test.param); });

/// Sends both while the program is stopped: it meets them together.
void send_at_once(const process& program, int first, int second) {
    program.send_signal(SIGSTOP);
    program.send_signal(first);
    program.send_signal(second);
    program.send_signal(SIGCONT);
}

TEST(two_signals, at_once_remove_a_pipe_once) {
    const temp_directory directory;
    const std::string name = directory.file("out");
    for (const int second : {SIGHUP, SIGINT}) {
        const scripted_daemon daemon(serving(1, true));
        process tracer(tracing(daemon, {"-V1", "-v", "--pcap-pipe", "--ofile=" + name, "127.0.0.1", "1000"}));
        ASSERT_TRUE(tracer.wait_for_errors("open file"));
        send_at_once(tracer, SIGTERM, second);
        const outcome got = tracer.wait();
        EXPECT_EQ(got.status, 1);
        EXPECT_FALSE(exists(name));
        EXPECT_THAT(got.errors,
                    AnyOf(EndsWith("open file " + name + "\ngot signal " + std::to_string(SIGTERM) + "\n\n"),
                          EndsWith("open file " + name + "\ngot signal " + std::to_string(second) + "\n\n")));
    }
}

TEST(two_signals, at_once_end_a_run_without_a_pipe) {
    const scripted_daemon daemon(serving(0, true));
    process tracer(tracing(daemon, {"-V1", "-v", "127.0.0.1", "1000"}));
    ASSERT_TRUE(tracer.wait_for_errors("(LAN)\n \n"));
    send_at_once(tracer, SIGTERM, SIGINT);
    const outcome got = tracer.wait();
    EXPECT_THAT(got.signal, AnyOf(SIGTERM, SIGINT));
    EXPECT_THAT(got.errors, Not(HasSubstr("got signal")));
}

TEST(stopping, loses_nothing) {
    std::promise<void> stopped;
    const scripted_daemon daemon([&stopped](const tcp_peer& client) {
        serving(1)(client);
        stopped.get_future().wait_for(10s);
        client.send(trace_record(2, std::vector<std::uint8_t>(14, 0xA2)));
    });
    process tracer(tracing(daemon, {"-V1", "-t", "127.0.0.1", "1000"}));
    ASSERT_TRUE(tracer.wait_for_output(CONVERSATION_RECORD));
    tracer.send_signal(SIGSTOP);
    stopped.set_value();
    tracer.send_signal(SIGCONT);
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, std::string(CONVERSATION_RECORD) + "000002.000 X DATA[0014]   \n\n");
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of("6 (LAN)", "") + STREAM_END);
}

}  // namespace
}  // namespace ifwatch::test
