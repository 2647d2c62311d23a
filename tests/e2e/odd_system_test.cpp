// Runs on a system that is not as it should be: full, short of descriptors, without MD5, with somebody else at work in
// the same directory.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <future>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;

bool exists(const std::string& path) {
    struct stat entry {};
    return lstat(path.c_str(), &entry) == 0;
}

bool wait_for_file(const std::string& path) {
    for (int i = 0; i < 10000 && !exists(path); ++i) {
        std::this_thread::sleep_for(1ms);
    }
    return exists(path);
}

/// ifwatch, started by a shell that does something before.
command in_shell(const std::string& before, std::vector<std::string> options) {
    options.insert(options.begin(), {"-c", before + R"(; exec "$0" "$@")", IFWATCH_PROGRAM});
    return {.program = "sh",
            .arguments = std::move(options),
            // Without descriptors a sanitizer's search for leaks fails, too.
            .environment = {{"ASAN_OPTIONS", "detect_leaks=0"}}};
}

// A sanitizer's library opens files before the program begins, and never comes to its end where it cannot.
#ifdef IFWATCH_ADDRESS_SANITIZER
constexpr bool NEEDS_DESCRIPTORS = true;
#else
constexpr bool NEEDS_DESCRIPTORS = false;
#endif
constexpr const char* WHAT_FOR = "the address sanitizer needs a descriptor before the program begins";

TEST(odd_system, no_descriptor_is_left_for_a_closed_stream) {
    if (NEEDS_DESCRIPTORS) {
        GTEST_SKIP() << WHAT_FOR;
    }
    const outcome got = run(in_shell("exec <&- >&-; ulimit -Sn 1", {"127.0.0.1"}));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, "ERROR cannot open /dev/null (Too many open files)\n");
}

TEST(odd_system, no_descriptor_is_left_to_say_so) {
    if (NEEDS_DESCRIPTORS) {
        GTEST_SKIP() << WHAT_FOR;
    }
    const outcome got = run(in_shell("exec <&- 2>&-; ulimit -Sn 1", {"127.0.0.1"}));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.output, "");
}

TEST(odd_system, logs_in_where_its_configuration_allows_no_md5) {
    const temp_directory directory;
    const std::string configuration = directory.write(
        "openssl.cnf",
        "openssl_conf = all\n[all]\nalg_section = algorithms\n[algorithms]\ndefault_properties = fips=yes\n");
    const scripted_daemon daemon(replying({0, 0, 1, 1, CHANNEL_TYPE_LAN, 0, 0, 0, 0}));
    const outcome got = run({.program = IFWATCH_PROGRAM,
                             .arguments = {daemon.port_option(), "--pwd=x", "127.0.0.1", "1000"},
                             .environment = {{"OPENSSL_CONF", configuration}}});
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of("6 (LAN)", "") + STREAM_END);
}

class odd_sink : public testing::Test {
protected:
    temp_directory directory;
    std::string name = directory.file("out");
    std::string option = "--ofile=" + name;
};

TEST_F(odd_sink, a_link_that_leads_nowhere_is_replaced) {
    ASSERT_EQ(symlink(directory.file("missing").c_str(), name.c_str()), 0);
    const scripted_daemon daemon(serving(1));
    EXPECT_EQ(run({.program = IFWATCH_PROGRAM,
                   .arguments = {"-V1", daemon.port_option(), "--pcap-file", option, "127.0.0.1", "1000"}})
                  .status,
              0);
    std::string written;
    EXPECT_TRUE(read_file(name, written));
    EXPECT_EQ(written, pcap_of(1));
    EXPECT_FALSE(exists(directory.file("missing")));
}

TEST_F(odd_sink, a_signal_ends_a_run_whose_error_stream_is_full) {
    const scripted_daemon daemon(serving(1, true));
    process tracer(
        in_shell("exec 2> /dev/full", {"-v", "-V1", daemon.port_option(), "--pcap-pipe", option, "127.0.0.1", "1000"}));
    ASSERT_TRUE(wait_for_file(name));
    process reader({.program = "cat", .arguments = {name}});
    ASSERT_TRUE(reader.wait_for_output(pcap_of(1)));
    tracer.send_signal(SIGTERM);
    EXPECT_EQ(tracer.wait().status, 1);
    EXPECT_FALSE(exists(name));
}

TEST_F(odd_sink, a_directory_in_the_place_of_the_pipe_stays) {
    std::promise<void> replaced;
    const scripted_daemon daemon([&replaced](const tcp_peer& client) {
        serving(1)(client);
        replaced.get_future().wait_for(10s);
    });
    process tracer({.program = IFWATCH_PROGRAM,
                    .arguments = {"-V1", daemon.port_option(), "--pcap-pipe", option, "127.0.0.1", "1000"}});
    ASSERT_TRUE(tracer.wait_for_errors("start now"));
    process reader({.program = "cat", .arguments = {name}});
    ASSERT_TRUE(reader.wait_for_output(pcap_of(1)));
    ASSERT_EQ(unlink(name.c_str()), 0);
    ASSERT_EQ(mkdir(name.c_str(), 0700), 0);
    replaced.set_value();
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.errors, EndsWith("\nERROR cannot delete " + name + " (Is a directory)\n"));
    EXPECT_TRUE(exists(name));
}

}  // namespace
}  // namespace ifwatch::test
