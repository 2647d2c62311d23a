#include "support/process.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/scripted_daemon.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

command shell(const std::string& script) { return {"sh", {"-c", script}}; }

TEST(process, keeps_both_streams_and_the_status) {
    const outcome ended = run(shell("echo out; echo err >&2; exit 3"));
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.signal, 0);
    EXPECT_EQ(ended.output, "out\n");
    EXPECT_EQ(ended.errors, "err\n");
    EXPECT_FALSE(ended.timed_out);
}

TEST(process, feeds_the_input) {
    command copying = shell("cat");
    copying.input = std::string(1'000'000, 'x');
    EXPECT_EQ(run(copying).output, copying.input);
    copying = shell("exec <&-; exit 0");
    copying.input = std::string(1'000'000, 'x');
    EXPECT_EQ(run(copying).status, 0) << "a program that does not read ends no test";
}

TEST(process, tells_the_signal) {
    const outcome ended = run(shell("kill -TERM $$"));
    EXPECT_EQ(ended.status, -1);
    EXPECT_EQ(ended.signal, SIGTERM);
}

TEST(process, ends_what_runs_too_long) {
    command hanging = shell("echo begun; exec sleep 60");
    hanging.timeout = std::chrono::milliseconds(200);
    const outcome ended = run(hanging);
    EXPECT_TRUE(ended.timed_out);
    EXPECT_EQ(ended.signal, SIGKILL);
    EXPECT_EQ(ended.output, "begun\n");
}

TEST(process, does_not_wait_for_what_the_program_left_behind) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(run(shell("sleep 5 & echo done")).output, "done\n");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

/// Whether a vfork()ed child writes into the memory of its parent, as posix_spawn needs it to tell an error. An
/// emulator may give it memory of its own.
bool child_shares_memory() {
    volatile bool written = false;
    const pid_t child = vfork();
    if (child == 0) {
        written = true;
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    return written;
}

TEST(process, tells_when_it_cannot_start) {
    if (!child_shares_memory()) {
        GTEST_SKIP() << "a child that could not start cannot tell it here: its memory is not its parent's";
    }
    const outcome ended = run({"/nowhere/at-all"});
    EXPECT_EQ(ended.status, -1);
    EXPECT_EQ(ended.errors, "/nowhere/at-all: No such file or directory");
}

TEST(process, sets_the_environment) {
    setenv("TRACE_PWD", "from outside", 1);
    command printing = shell("echo ${TRACE_PWD-unset} ${TRACE_PORT-unset}");
    printing.environment = {{"TRACE_PORT", "7"}};
    EXPECT_EQ(run(printing).output, "unset 7\n");
    unsetenv("TRACE_PWD");
}

TEST(process, runs_in_the_background) {
    process waiting(shell("trap 'echo stopped; exit 0' TERM; echo ready; echo note >&2; while :; do sleep 0.01; done"));
    EXPECT_TRUE(waiting.wait_for_output("ready\n"));
    EXPECT_TRUE(waiting.wait_for_errors("note\n"));
    const outcome ended = waiting.terminate();
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, "ready\nstopped\n");
}

TEST(process, stops_waiting_for_a_text_when_the_program_ends) {
    process ending(shell("echo last; exit 4"));
    EXPECT_FALSE(ending.wait_for_output("never"));
    EXPECT_TRUE(ending.wait_for_output("last"));
    EXPECT_EQ(ending.wait().status, 4);
}

TEST(temp_directory, goes_with_its_object) {
    std::string path;
    {
        const temp_directory directory;
        path = directory.write("file", std::string("a\0b", 3));
        std::string text;
        EXPECT_TRUE(read_file(path, text));
        EXPECT_EQ(text, std::string("a\0b", 3));
    }
    std::string text;
    EXPECT_FALSE(read_file(path, text));
}

TEST(scripted_daemon, runs_a_script_for_each_connection) {
    const scripted_daemon daemon({
        [](const tcp_peer& client) {
            client.send({1, 2});
        },
        [](const tcp_peer& client) { client.send_element(5, "no"); },
    });
    EXPECT_EQ(tcp_client(daemon.port()).receive_all(), (std::vector<std::uint8_t>{1, 2}));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(tcp_client(daemon.port()).receive_all(), (std::vector<std::uint8_t>{0, 0, 2, 5, 'n', 'o'}));
    }
}

TEST(scripted_daemon, hears_the_client) {
    std::vector<std::uint8_t> heard;
    {
        const scripted_daemon daemon([&heard](const tcp_peer& client) {
            heard = client.receive(3);
            client.send_element(1, {6});
        });
        const tcp_client client(daemon.port());
        client.send({7, 8, 9, 10});
        EXPECT_EQ(client.receive_all(), (std::vector<std::uint8_t>{0, 0, 1, 1, 6}));
    }
    EXPECT_EQ(heard, (std::vector<std::uint8_t>{7, 8, 9}));
}

TEST(scripted_daemon, ends_a_script_that_still_listens) {
    bool ended = false;
    {
        const scripted_daemon daemon([&ended](const tcp_peer& client) {
            client.send({1});
            ended = client.receive(1).empty();
        });
        const tcp_client client(daemon.port());
        EXPECT_EQ(client.receive(1).size(), 1U);
    }
    EXPECT_TRUE(ended);
}

}  // namespace
}  // namespace ifwatch::test
