// The PCAP sinks: named pipes with real readers and analysers, plain files, what is removed and what stays, and how
// signals end a run.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr const char* STREAM_END = "trc hdr too short! = 0<22\n";
constexpr const char* COUNTER_START = "Packets captured:        0";
constexpr const char* COUNTER_BACK = "\b\b\b\b\b\b\b\b";
constexpr const char* EXEC_HINT = "\tstart now manually or set $TRACE_EXEC (default: \"ethereal -Sk -i\")\n";

/// Leaves its arguments, and what it read from the third of them, in its own directory.
constexpr const char* RECORDING_ANALYSER = R"(#!/bin/sh
here=${0%/*}
printf '%s\n' "$#" "$@" > "$here/arguments"
cat "$3" > "$here/part" && mv "$here/part" "$here/captured"
)";

/// Reads to the end, then leaves a list of the files it has open.
constexpr const char* FILE_LISTING_ANALYSER = R"(#!/bin/sh
here=${0%/*}
cat "$1" > /dev/null
ls -l /proc/$$/fd > "$here/part"
mv "$here/part" "$here/open"
)";

bool exists(const std::string& path) {
    struct stat entry {};
    return lstat(path.c_str(), &entry) == 0;
}

mode_t mode_of(const std::string& path) {
    struct stat entry {};
    return lstat(path.c_str(), &entry) == 0 ? entry.st_mode : 0;
}

std::string text_of(const std::string& path) {
    std::string text;
    EXPECT_TRUE(read_file(path, text)) << path;
    return text;
}

/// Waits for a file that another process makes complete at once.
bool wait_for_file(const std::string& path) {
    for (int i = 0; i < 10000 && !exists(path); ++i) {
        std::this_thread::sleep_for(1ms);
    }
    return exists(path);
}

bool is_there(const tcp_peer& client) {
    char octet = 0;
    return recv(client.socket(), &octet, 1, MSG_DONTWAIT | MSG_PEEK) < 0 && errno == EAGAIN;
}

/// A run that traces interface 1000 of a version-1 daemon into a sink.
command tracing(const scripted_daemon& daemon, std::vector<std::string> options) {
    options.insert(options.begin(), {"-V1", daemon.port_option()});
    options.insert(options.end(), {"127.0.0.1", "1000"});
    return {.program = IFWATCH_PROGRAM, .arguments = std::move(options)};
}

command reading(const std::string& path) { return {.program = "cat", .arguments = {path}}; }

std::string connected_to(const scripted_daemon& daemon) {
    return "ifwatch: connected to 127.0.0.1:" + std::to_string(daemon.port()) +
           "\nIfc:1000 (Chan:0 Unit:0 Slot:1) Type: 6 (LAN)\n \n";
}

std::string counter(int last) {
    std::string text = COUNTER_START;
    for (int i = 1; i <= last; ++i) {
        text += COUNTER_BACK + std::string("       ") + std::to_string(i);
    }
    return text;
}

std::string created_pipe(const std::string& name) {
    return "created pipe: " + name + "\nstart now e.g.: ethereal -Sk -i " + name + "\n";
}

class sink : public testing::Test {
protected:
    temp_directory directory;
    std::string name = directory.file("out");
    std::string option = "--ofile=" + name;
};

class pcap_pipe : public sink {
protected:
    void expect_new_pipe() const {
        const scripted_daemon daemon(serving(1));
        process tracer(tracing(daemon, {"--pcap-pipe", option}));
        ASSERT_TRUE(tracer.wait_for_errors("start now"));
        EXPECT_EQ(mode_of(name), S_IFIFO | 0600U);
        EXPECT_EQ(run(reading(name)).output, pcap_of(1));
        EXPECT_EQ(tracer.wait().status, 0);
    }
};
class pcap_file : public sink {};
class analyser : public sink {};

TEST_F(pcap_pipe, hands_every_record_to_its_reader) {
    const scripted_daemon daemon(serving(3));
    process tracer(tracing(daemon, {"--pcap-pipe", option}));
    ASSERT_TRUE(tracer.wait_for_errors("start now"));
    EXPECT_EQ(mode_of(name), S_IFIFO | 0600U);
    const outcome read = run(reading(name));
    const outcome got = tracer.wait();
    EXPECT_EQ(read.output, pcap_of(3));
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, "");
    EXPECT_EQ(got.errors, connected_to(daemon) + created_pipe(name) + counter(3) + STREAM_END);
    EXPECT_FALSE(exists(name));
}

TEST_F(pcap_pipe, says_what_it_opens) {
    const scripted_daemon daemon(serving(0));
    process tracer(tracing(daemon, {"-v", "--pcap-pipe", option}));
    ASSERT_TRUE(tracer.wait_for_errors("open file"));
    run(reading(name));
    EXPECT_EQ(tracer.wait().errors,
              connected_to(daemon) + created_pipe(name) + "open file " + name + "\n" + COUNTER_START + STREAM_END);
}

TEST_F(pcap_pipe, replaces_an_old_file) {
    directory.write("out", "old");
    expect_new_pipe();
}

TEST_F(pcap_pipe, replaces_an_old_pipe) {
    ASSERT_EQ(mkfifo(name.c_str(), 0644), 0);
    expect_new_pipe();
}

TEST_F(pcap_pipe, that_cannot_be_created_ends_the_run) {
    const scripted_daemon daemon(serving(1));
    const std::string unreachable = directory.file("missing/out");
    const outcome got = run(tracing(daemon, {"--pcap-pipe", "--ofile=" + unreachable}));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, connected_to(daemon) + "created pipe: " + unreachable + "\nERROR cannot create pipe " +
                              unreachable + " (No such file or directory)\n");
}

TEST_F(pcap_pipe, does_not_replace_a_directory) {
    const scripted_daemon daemon(serving(1));
    const outcome got = run(tracing(daemon, {"--pcap-pipe", "--ofile=" + directory.path()}));
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith("ERROR cannot create pipe " + directory.path() + " (File exists)\n"));
    EXPECT_TRUE(S_ISDIR(mode_of(directory.path())));
}

TEST_F(pcap_pipe, goes_when_its_reader_has_gone) {
    const scripted_daemon daemon([](const tcp_peer& client) {
        serving(1)(client);
        while (is_there(client)) {
            client.send(trace_record(2, {1}));
            std::this_thread::sleep_for(1ms);
        }
    });
    process tracer(tracing(daemon, {"-v", "--pcap-pipe", option}));
    ASSERT_TRUE(tracer.wait_for_errors("open file"));
    EXPECT_EQ(run({.program = "head", .arguments = {"-c24", name}}).output, pcap_of(0));
    const outcome got = tracer.wait();
    EXPECT_EQ(got.signal, SIGPIPE);
    EXPECT_THAT(got.errors, Not(HasSubstr("got signal")));
    EXPECT_FALSE(exists(name));
}

TEST_F(pcap_pipe, goes_with_a_run_whose_terminal_is_gone) {
    const scripted_daemon daemon(serving(1));
    process tracer({.program = "sh",
                    .arguments = {"-c", R"(exec "$0" "$@" > /dev/full)", IFWATCH_PROGRAM, "-V1", daemon.port_option(),
                                  "--pcap-pipe", "--print", option, "127.0.0.1", "1000"}});
    ASSERT_TRUE(tracer.wait_for_errors("start now"));
    run(reading(name));
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith("ERROR write (No space left on device)\n"));
    EXPECT_FALSE(exists(name));
}

TEST_F(pcap_pipe, that_somebody_removed_is_not_missed_at_the_end) {
    const scripted_daemon daemon(serving(1));
    process tracer(tracing(daemon, {"--pcap-pipe", option}));
    ASSERT_TRUE(tracer.wait_for_errors("start now"));
    process reader({.program = "sh", .arguments = {"-c", R"(exec < "$0"; rm "$0"; cat)", name}});
    EXPECT_EQ(reader.wait().output, pcap_of(1));
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.errors, Not(HasSubstr("ERROR")));
}

class ending_signal : public sink, public testing::WithParamInterface<int> {};

TEST_P(ending_signal, removes_a_pipe_nobody_reads) {
    const scripted_daemon daemon(serving(1, true));
    process tracer(tracing(daemon, {"-v", "--pcap-pipe", option}));
    ASSERT_TRUE(tracer.wait_for_errors("open file"));
    tracer.send_signal(GetParam());
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, connected_to(daemon) + created_pipe(name) + "open file " + name + "\ngot signal " +
                              std::to_string(GetParam()) + "\n\n");
    EXPECT_FALSE(exists(name));
}

TEST_P(ending_signal, removes_a_pipe_that_is_read) {
    const scripted_daemon daemon(serving(2, true));
    process tracer(tracing(daemon, {"--pcap-pipe", option}));
    ASSERT_TRUE(tracer.wait_for_errors("start now"));
    process reader(reading(name));
    ASSERT_TRUE(tracer.wait_for_errors(counter(2)));
    tracer.send_signal(GetParam());
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, connected_to(daemon) + created_pipe(name) + counter(2) + "\n");
    EXPECT_FALSE(exists(name));
    EXPECT_EQ(reader.wait().output, pcap_of(2));
}

TEST_P(ending_signal, tells_that_the_pipe_cannot_be_removed) {
    const scripted_daemon daemon(serving(1, true));
    process tracer(tracing(daemon, {"-v", "--pcap-pipe", option}));
    ASSERT_TRUE(tracer.wait_for_errors("open file"));
    ASSERT_EQ(unlink(name.c_str()), 0);
    tracer.send_signal(GetParam());
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith("\ngot signal " + std::to_string(GetParam()) + "\nERROR cannot delete " + name +
                                     " (No such file or directory)\n\n"));
}

TEST_P(ending_signal, leaves_a_file_and_its_records) {
    const scripted_daemon daemon(serving(2, true));
    process tracer(tracing(daemon, {"-v", "--pcap-file", option}));
    ASSERT_TRUE(tracer.wait_for_errors(counter(2)));
    tracer.send_signal(GetParam());
    const outcome got = tracer.wait();
    EXPECT_EQ(got.signal, GetParam());
    EXPECT_THAT(got.errors, EndsWith(counter(2)));
    EXPECT_EQ(text_of(name), pcap_of(2));
}

INSTANTIATE_TEST_SUITE_P(hang_up_interrupt_terminate, ending_signal, testing::Values(1, 2, 15));

TEST_F(pcap_file, holds_every_record) {
    const scripted_daemon daemon(serving(3));
    const outcome got = run(tracing(daemon, {"--pcap-file", option}));
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, "");
    EXPECT_EQ(got.errors, connected_to(daemon) + "created file: " + name + "\n" + counter(3) + STREAM_END);
    EXPECT_EQ(text_of(name), pcap_of(3));
    EXPECT_EQ(mode_of(name), S_IFREG | 0600U);
}

TEST_F(pcap_file, takes_the_link_type_of_the_command_line) {
    const scripted_daemon daemon(serving(1));
    const outcome got = run(tracing(daemon, {"-v", "--pcap-file", "--pcap-linktype=105", option}));
    EXPECT_EQ(got.errors,
              connected_to(daemon) + "created file: " + name + "\nopen file " + name + "\n" + counter(1) + STREAM_END);
    EXPECT_EQ(text_of(name), pcap_of(1, 105));
}

TEST_F(pcap_file, is_written_while_the_terminal_shows_the_records) {
    const scripted_daemon daemon(serving(2));
    const outcome got = run(tracing(daemon, {"--pcap-file", "--print", option}));
    EXPECT_THAT(got.output, HasSubstr("000001.000 X DATA[0014]   \n"));
    EXPECT_THAT(got.output, HasSubstr("000002.000 X DATA[0014]   \n"));
    EXPECT_EQ(got.errors, connected_to(daemon) + "created file: " + name + "\n" + STREAM_END);
    EXPECT_EQ(text_of(name), pcap_of(2));
}

TEST_F(pcap_file, is_named_after_program_router_and_interface) {
    const std::string program = directory.file("ifwatch-" + std::to_string(getpid()));
    ASSERT_EQ(symlink(IFWATCH_PROGRAM, program.c_str()), 0);
    const std::string stem = "/tmp/ifwatch-" + std::to_string(getpid()) + "-127.0.0.1-1000.pcap";
    const scripted_daemon daemon(serving(1));
    command what = tracing(daemon, {"--pcap-file"});
    what.program = program;
    EXPECT_THAT(run(what).errors, HasSubstr("created file: " + stem + "\n"));
    EXPECT_EQ(text_of(stem), pcap_of(1));
    unlink(stem.c_str());
    what.arguments[2] = "--pcap-pipe";
    process tracer(what);
    EXPECT_TRUE(tracer.wait_for_errors("created pipe: " + stem + "p\nstart now e.g.: ethereal -Sk -i " + stem + "p\n"));
    tracer.terminate();
    EXPECT_NE(unlink((stem + "p").c_str()), 0) << "the pipe was still there";
}

TEST_F(pcap_file, replaces_an_old_file_without_touching_its_other_names) {
    const std::string other_name = directory.write("other", "old");
    ASSERT_EQ(link(other_name.c_str(), name.c_str()), 0);
    const scripted_daemon daemon(serving(1));
    run(tracing(daemon, {"--pcap-file", option}));
    EXPECT_EQ(text_of(name), pcap_of(1));
    EXPECT_EQ(text_of(other_name), "old");
}

TEST_F(pcap_file, replaces_a_link_and_leaves_what_it_leads_to) {
    const std::string target = directory.write("target", "old");
    ASSERT_EQ(symlink(target.c_str(), name.c_str()), 0);
    const scripted_daemon daemon(serving(1));
    run(tracing(daemon, {"--pcap-file", option}));
    EXPECT_EQ(mode_of(name), S_IFREG | 0600U);
    EXPECT_EQ(text_of(name), pcap_of(1));
    EXPECT_EQ(text_of(target), "old");
}

TEST_F(pcap_file, replaces_an_old_pipe) {
    ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
    const scripted_daemon daemon(serving(1));
    run(tracing(daemon, {"--pcap-file", option}));
    EXPECT_EQ(mode_of(name), S_IFREG | 0600U);
}

TEST_F(pcap_file, may_be_the_standard_output) {
    ASSERT_EQ(symlink("/proc/self/fd/1", name.c_str()), 0);
    const scripted_daemon daemon(serving(2));
    const outcome got = run(tracing(daemon, {"--pcap-file", option}));
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, pcap_of(2));
    EXPECT_TRUE(S_ISLNK(mode_of(name)));
}

// Otherwise a file of several names is not written to.
TEST_F(pcap_file, may_be_a_standard_output_that_has_another_name) {
    const std::string file = directory.write("file", "");
    ASSERT_EQ(link(file.c_str(), directory.file("other").c_str()), 0);
    ASSERT_EQ(symlink("/proc/self/fd/1", name.c_str()), 0);
    const scripted_daemon daemon(serving(2));
    command told = tracing(daemon, {"--pcap-file", option});
    told.output_fd = open(file.c_str(), O_WRONLY | O_CLOEXEC);
    const outcome got = run(told);
    close(told.output_fd);
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(text_of(file), pcap_of(2));
}

TEST_F(pcap_file, a_device_that_is_full_ends_the_run_and_stays) {
    ASSERT_EQ(symlink("/dev/full", name.c_str()), 0);
    const scripted_daemon daemon(serving(1));
    const outcome got = run(tracing(daemon, {"--pcap-file", option}));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, connected_to(daemon) + "created file: " + name +
                              "\nERROR write pcap header ret : -1\nwrite pcap file header: No space left on device\n");
    EXPECT_TRUE(S_ISLNK(mode_of(name)));
}

TEST_F(pcap_file, that_cannot_be_opened_ends_the_run) {
    const scripted_daemon daemon(serving(1));
    const std::string unreachable = directory.file("missing/out");
    const outcome got = run(tracing(daemon, {"--pcap-file", "--ofile=" + unreachable}));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, connected_to(daemon) + "created file: " + unreachable + "\nERROR cannot open " + unreachable +
                              " (No such file or directory)\n");
}

TEST_F(pcap_file, does_not_replace_a_directory) {
    const scripted_daemon daemon(serving(1));
    const outcome got = run(tracing(daemon, {"--pcap-file", "--ofile=" + directory.path()}));
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith("ERROR cannot open " + directory.path() + " (Is a directory)\n"));
    EXPECT_TRUE(S_ISDIR(mode_of(directory.path())));
}

TEST_F(pcap_file, a_name_too_long_is_not_cut) {
    const scripted_daemon daemon(serving(1));
    const outcome got = run(tracing(daemon, {"--pcap-file", option + std::string(5000, 'x')}));
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, HasSubstr("ERROR cannot open "));
}

TEST_F(analyser, reads_the_pipe) {
    const std::string script = directory.write("analyser", RECORDING_ANALYSER);
    ASSERT_EQ(chmod(script.c_str(), 0700), 0);
    const scripted_daemon daemon(serving(2));
    command what = tracing(daemon, {"--ethereal", option});
    what.environment = {{"TRACE_EXEC", "analyser -k -i"}, {"PATH", directory.path() + ":/usr/bin:/bin"}};
    const outcome got = run(what);
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, connected_to(daemon) + "created pipe: " + name +
                              "\nstart prog $TRACE_EXEC\nstarting: analyser -k -i " + name + "\n" + counter(2) +
                              STREAM_END);
    ASSERT_TRUE(wait_for_file(directory.file("captured")));
    EXPECT_EQ(text_of(directory.file("captured")), pcap_of(2));
    EXPECT_EQ(text_of(directory.file("arguments")), "3\n-k\n-i\n" + name + "\n");
    EXPECT_FALSE(exists(name));
}

TEST_F(analyser, is_the_usual_one_when_the_environment_names_none) {
    const std::string script = directory.write("ethereal", RECORDING_ANALYSER);
    ASSERT_EQ(chmod(script.c_str(), 0700), 0);
    const scripted_daemon daemon(serving(1));
    command what = tracing(daemon, {"--ethereal", option});
    what.environment = {{"PATH", directory.path() + ":/usr/bin:/bin"}, {"TRACE_EXEC", ""}};
    EXPECT_THAT(run(what).errors, HasSubstr("created pipe: " + name + "\nstarting: ethereal -Sk -i " + name + "\n"));
    ASSERT_TRUE(wait_for_file(directory.file("captured")));
    EXPECT_EQ(text_of(directory.file("captured")), pcap_of(1));
    EXPECT_EQ(text_of(directory.file("arguments")), "3\n-Sk\n-i\n" + name + "\n");
}

TEST_F(analyser, that_does_not_start_may_be_started_by_hand) {
    const scripted_daemon daemon(serving(2));
    command what = tracing(daemon, {"--ethereal", option});
    what.environment = {{"PATH", directory.path()}};
    process tracer(what);
    ASSERT_TRUE(tracer.wait_for_errors(EXEC_HINT));
    EXPECT_EQ(run(reading(name)).output, pcap_of(2));
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, connected_to(daemon) + "created pipe: " + name + "\nstarting: ethereal -Sk -i " + name +
                              "\n\nERROR exec: ethereal (No such file or directory)\n" + EXEC_HINT + counter(2) +
                              STREAM_END);
    EXPECT_FALSE(exists(name));
}

TEST_F(analyser, does_not_keep_the_connection_to_the_router) {
    const std::string script = directory.write("analyser", FILE_LISTING_ANALYSER);
    ASSERT_EQ(chmod(script.c_str(), 0700), 0);
    const scripted_daemon daemon(serving(1));
    command what = tracing(daemon, {"--ethereal", option});
    what.environment = {{"TRACE_EXEC", script}};
    EXPECT_EQ(run(what).status, 0);
    ASSERT_TRUE(wait_for_file(directory.file("open")));
    EXPECT_THAT(text_of(directory.file("open")), Not(HasSubstr("socket:")));
}

}  // namespace
}  // namespace ifwatch::test
