// What a run does when the system refuses it something: connections that break off before it writes, a descriptor, the
// room for a file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <future>
#include <string>
#include <utility>
#include <vector>

#include "support/held_up_errors.h"
#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

constexpr const char* NO_ACKNOWLEDGE =
    "Ifc:1000 (Chan:0 Unit:0 Slot:1) Type: -1 (not-found)\n negative trace acknowledge\n";

std::string try_connect_to(const scripted_daemon& daemon) {
    return "try connect to 127.0.0.1:" + std::to_string(daemon.port()) + "\n";
}

/// A run that traces interface 1000 with these options and that error stream.
outcome trace_with(const held_up_errors& errors, const scripted_daemon& daemon, std::vector<std::string> options) {
    options.insert(options.end(), {"127.0.0.1", "1000"});
    return run(errors.of(tracing(daemon, std::move(options))));
}

TEST(broken_connection, refuses_the_trace_request) {
    held_up_errors errors;
    const scripted_daemon daemon([&errors](const tcp_peer& client) {
        client.reset();
        errors.release();
    });
    errors.hold_up_behind("");
    EXPECT_EQ(trace_with(errors, daemon, {}).status, 1);
    EXPECT_EQ(errors.release(), connected_to(daemon) + "ERROR write (Connection reset by peer)\n");
}

/// A daemon of which the first connection breaks off behind `step`, while the client is held up. The second one ends
/// behind its trace request.
std::vector<scripted_daemon::script> breaking_off_behind(scripted_daemon::script step, held_up_errors& errors) {
    return {[step = std::move(step), &errors](const tcp_peer& client) {
                client.receive(TRACE_REQUEST_OCTETS);
                step(client);
                client.reset();
                errors.release();
            },
            [](const tcp_peer& client) { client.receive(TRACE_REQUEST_OCTETS); }};
}

TEST(broken_connection, refuses_the_addinfo_and_version_1_is_tried) {
    held_up_errors errors;
    const scripted_daemon daemon(breaking_off_behind([](const tcp_peer&) {}, errors));
    const std::string before = try_connect_to(daemon) + connected_to(daemon);
    errors.hold_up_behind(before);
    EXPECT_EQ(trace_with(errors, daemon, {"-vv", "-V2"}).status, 1);
    EXPECT_EQ(errors.release(),
              before + "written vtrace: V.2, 1/0/0 tlen: -1\nERROR write addinfo (Connection reset by peer)\n" +
                  before + "written vtrace: V.1, 1/0/0 tlen: -1\n" + NO_ACKNOWLEDGE);
}

TEST(broken_connection, refuses_the_login_and_version_1_is_tried) {
    held_up_errors errors;
    const auto challenge = [](const tcp_peer& client) {
        client.send_element(2, {3});
        client.send_element(10, {1, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88});
    };
    const scripted_daemon daemon(breaking_off_behind(challenge, errors));
    errors.hold_up_behind(connected_to(daemon));
    EXPECT_EQ(trace_with(errors, daemon, {"-v", "--pwd=x"}).status, 1);
    EXPECT_EQ(errors.release(), connected_to(daemon) +
                                    "got RVERSION 3\nERROR write addinfo (Connection reset by peer)\n" +
                                    connected_to(daemon) + NO_ACKNOWLEDGE);
}

/// Changes a limit of a running program.
void limit(pid_t program, decltype(RLIMIT_NOFILE) what, rlim_t value) {
    rlimit wanted{};
    ASSERT_EQ(prlimit(program, what, nullptr, &wanted), 0);
    wanted.rlim_cur = value;
    EXPECT_EQ(prlimit(program, what, &wanted, nullptr), 0);
}

/// Traces interface 1000 of a daemon that limits what its client may have, behind the trace request. Then it closes;
/// or, with a channel type to send, it goes on with a session of version 1.
outcome trace_limited(decltype(RLIMIT_NOFILE) what, rlim_t value, std::vector<std::string> arguments,
                      std::string& connected, bool acknowledges = true, const std::string& tunables = "") {
    std::promise<pid_t> started;
    const scripted_daemon daemon([&](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        limit(started.get_future().get(), what, value);
        if (acknowledges) {
            client.send({CHANNEL_TYPE_LAN});
        }
    });
    connected = connected_to(daemon);
    arguments.insert(arguments.end(), {"127.0.0.1", "1000"});
    command run_of = tracing(daemon, std::move(arguments));
    // A sanitizer's search for leaks takes descriptors, too.
    run_of.environment = {{"ASAN_OPTIONS", "detect_leaks=0"}, {"GLIBC_TUNABLES", tunables}};
    process tracer(run_of);
    started.set_value(tracer.id());
    return tracer.wait();
}

constexpr rlim_t STANDARD_STREAMS = 3;
constexpr rlim_t AND_THE_CONNECTION = 4;

TEST(no_descriptor, refuses_the_second_connection) {
    std::string connected;
    const outcome got = trace_limited(RLIMIT_NOFILE, STANDARD_STREAMS, {}, connected, false);
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors,
              connected + report_of(NO_TYPE, "missing elem header data") + "ERROR socket (Too many open files)\n");
}

TEST(no_descriptor, refuses_the_file) {
    const temp_directory directory;
    const std::string name = directory.file("out");
    std::string connected;
    const outcome got =
        trace_limited(RLIMIT_NOFILE, AND_THE_CONNECTION, {"-V1", "--pcap-file", "--ofile=" + name}, connected);
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, connected + report_of("6 (LAN)", "") + "created file: " + name + "\nERROR cannot open " +
                              name + " (Too many open files)\n");
}

TEST(no_descriptor, refuses_the_pipe_which_is_removed) {
    const temp_directory directory;
    const std::string name = directory.file("out");
    std::string connected;
    const outcome got =
        trace_limited(RLIMIT_NOFILE, AND_THE_CONNECTION, {"-V1", "--pcap-pipe", "--ofile=" + name}, connected);
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, connected + report_of("6 (LAN)", "") + "created pipe: " + name +
                              "\nstart now e.g.: ethereal -Sk -i " + name + "\nERROR cannot open " + name +
                              " (Too many open files)\n");
    struct stat entry {};
    EXPECT_NE(lstat(name.c_str(), &entry), 0);
}

TEST(no_descriptor, is_no_trouble_for_records_on_the_terminal) {
    std::string connected;
    const outcome got = trace_limited(RLIMIT_NOFILE, AND_THE_CONNECTION, {"-V1"}, connected);
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, connected + report_of("6 (LAN)", "") + STREAM_END);
}

TEST(no_memory, refuses_the_record_buffer) {
#ifdef IFWATCH_ADDRESS_SANITIZER
    GTEST_SKIP() << "the address sanitizer has an allocator of its own";
#endif
    std::string connected;
    const outcome got =
        trace_limited(RLIMIT_AS, 0, {"-V1"}, connected, true, "glibc.malloc.top_pad=0");  // no more than it has
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, connected + report_of("6 (LAN)", "") + "malloc 8192 bytes failed!\n");
}

/// A file that takes only so many octets.
class full_file : public testing::Test {
protected:
    static constexpr rlim_t FILE_HEADER = 24;
    static constexpr rlim_t RECORD_HEADER = 16;

    /// Traces two records of 14 octets into a file of at most `octets`.
    outcome trace(rlim_t octets, const std::vector<std::string>& options = {}) {
        std::promise<pid_t> started;
        const scripted_daemon daemon([&started, octets](const tcp_peer& client) {
            client.receive(TRACE_REQUEST_OCTETS);
            limit(started.get_future().get(), RLIMIT_FSIZE, octets);
            client.send({CHANNEL_TYPE_LAN});
            client.send(trace_record(1, std::vector<std::uint8_t>(14, 0xA1)));
            client.send(trace_record(2, std::vector<std::uint8_t>(14, 0xA2)));
        });
        std::vector<std::string> arguments = {"-V1", daemon.port_option(), "--pcap-file", "--ofile=" + name_};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.insert(arguments.end(), {"127.0.0.1", "1000"});
        process tracer({.program = IFWATCH_PROGRAM, .arguments = arguments});
        started.set_value(tracer.id());
        return tracer.wait();
    }

    std::string written() {
        std::string text;
        EXPECT_TRUE(read_file(name_, text));
        return text;
    }

private:
    temp_directory directory_;
    std::string name_ = directory_.file("out.pcap");
};

// The messages tell what the first attempt took, and why the next one took nothing.

TEST_F(full_file, the_file_header_does_not_fit) {
    const outcome got = trace(10);
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith("ERROR write pcap header ret : 10\nwrite pcap file header: File too large\n"));
    EXPECT_EQ(written(), pcap_of(0).substr(0, 10));
}

TEST_F(full_file, has_no_room_at_all) {
    const outcome got = trace(0);
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith("ERROR write pcap header ret : -1\nwrite pcap file header: File too large\n"));
    EXPECT_EQ(written(), "");
}

TEST_F(full_file, a_record_header_does_not_fit) {
    const outcome got = trace(FILE_HEADER + 10);
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.errors, HasSubstr("Packets captured:        0"
                                      "ERROR write pcap datahdr ret : 10\nwrite pcap data header: File too large\n"
                                      "\b\b\b\b\b\b\b\b       1"
                                      "ERROR write pcap datahdr ret : -1\nwrite pcap data header: Bad file descriptor\n"
                                      "\b\b\b\b\b\b\b\b       2" +
                                      std::string(STREAM_END)));
    EXPECT_EQ(written(), pcap_of(1).substr(0, FILE_HEADER + 10));
}

TEST_F(full_file, a_frame_does_not_fit_and_the_display_goes_on) {
    const outcome got = trace(FILE_HEADER + RECORD_HEADER + 5, {"--print", "-t"});
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, "000001.000 X DATA[0014]   \n\n000002.000 X DATA[0014]   \n\n");
    EXPECT_THAT(got.errors,
                HasSubstr("\nERROR write pcap data ret : 5\nwrite pcap data pkt: File too large\n"
                          "ERROR write pcap datahdr ret : -1\nwrite pcap data header: Bad file descriptor\n" +
                          std::string(STREAM_END)));
    EXPECT_EQ(written(), pcap_of(1).substr(0, FILE_HEADER + RECORD_HEADER + 5));
}

TEST(full_output, a_file_that_may_not_grow_ends_the_run_with_a_message) {
    const scripted_daemon daemon([](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send({CHANNEL_TYPE_LAN});
        client.send(trace_record(1, std::vector<std::uint8_t>(14, 0xA1)));
    });
    const temp_directory directory;
    process tracer({.program = "sh",
                    .arguments = {"-c", R"(ulimit -f 0; exec "$0" "$@" >"$OUT")", IFWATCH_PROGRAM, "-V1",
                                  daemon.port_option(), "127.0.0.1", "1000"},
                    .environment = {{"OUT", directory.file("trace")}}});
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, HasSubstr("ERROR write (File too large)\n"));
}

}  // namespace
}  // namespace ifwatch::test
