// A signal while nobody reads the error stream: what a run has to tell is lost, what it has to do is done.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include "support/held_up_errors.h"
#include "support/session_script.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;

bool comes_to_be(const std::string& path) {
    struct stat entry {};
    const auto until = std::chrono::steady_clock::now() + 10s;
    while (lstat(path.c_str(), &entry) != 0 && std::chrono::steady_clock::now() < until) {
        std::this_thread::sleep_for(1ms);
    }
    return lstat(path.c_str(), &entry) == 0;
}

TEST(unheard_signal, removes_the_pipe_and_ends_the_run) {
    const temp_directory directory;
    const std::string name = directory.file("out");
    const scripted_daemon daemon(serving(1, true));
    held_up_errors errors;
    errors.hold_up_behind(connected_to(daemon) + report_of("6 (LAN)", "") + "created pipe: " + name + "\n");
    process tracer(errors.of(tracing(daemon, {"-V1", "--pcap-pipe", "--ofile=" + name, "127.0.0.1", "1000"})));
    ASSERT_TRUE(comes_to_be(name));
    tracer.send_signal(SIGTERM);
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 1) << got.timed_out;
    struct stat entry {};
    EXPECT_NE(lstat(name.c_str(), &entry), 0);
}

}  // namespace
}  // namespace ifwatch::test
