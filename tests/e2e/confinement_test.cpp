// What the process gives up before the first record: the password, and the system calls that it no longer needs.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <future>
#include <sstream>
#include <string>

#include "client/confinement.h"
#include "support/process.h"
#include "support/programs.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

constexpr const char* PASSWORD = "kept-nowhere-4711";
constexpr const char* FIRST_RECORD = "000001.000 X DATA[0014]";

// --- The password

/// A version-3 login that waits before its challenge until the test has looked, then one record; it ends with the
/// client.
struct pausing_daemon {
    std::promise<void> asked;   // the client waits for the challenge
    std::promise<void> looked;  // the test has looked
    scripted_daemon daemon{[this](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send_element(2, {3});
        asked.set_value();
        looked.get_future().wait();
        client.send_element(10, {1, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88});
        client.send_element(1, {CHANNEL_TYPE_LAN});
        client.send_element(0);
        client.send(trace_record(1, std::vector<std::uint8_t>(14, 0xA1)));
        client.receive_all();
    }};
};

// What a sanitizer knows about each octet of the memory fills terabytes of addresses, and holds none of the octets.
constexpr std::uint64_t SHADOW_AT_LEAST = std::uint64_t{1} << 32;

/// How often a text stands in the memory that a process can write; -1 when its memory cannot be read.
int count_in_memory(pid_t id, const std::string& text) {
    const std::string directory = "/proc/" + std::to_string(id);
    std::ifstream maps(directory + "/maps");
    const int memory = open((directory + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    int found = memory < 0 ? -1 : 0;
    for (std::string line; found >= 0 && std::getline(maps, line);) {
        std::istringstream fields(line);
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
        char dash = 0;
        std::string rights;
        fields >> std::hex >> begin >> dash >> end >> rights;
        if (rights.substr(0, 2) != "rw" || end - begin > SHADOW_AT_LEAST) {
            continue;
        }
        std::string held(end - begin, '\0');
        const ssize_t got = pread(memory, held.data(), held.size(), static_cast<off_t>(begin));
        held.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
        for (std::size_t at = held.find(text); at != std::string::npos; at = held.find(text, at + 1)) {
            ++found;
        }
    }
    close(memory);
    return found;
}

/// Starts the tracer as told, looks for the password while it waits for the challenge, and again at the first record.
void expect_forgotten(command tracer, bool held_before) {
    pausing_daemon peer;
    tracer.program = IFWATCH_PROGRAM;
    tracer.arguments.insert(tracer.arguments.end(), {peer.daemon.port_option(), "127.0.0.1", "1000"});
    process running(tracer);
    peer.asked.get_future().wait();
    const int before = count_in_memory(running.id(), PASSWORD);
    peer.looked.set_value();
    ASSERT_TRUE(running.wait_for_output(FIRST_RECORD)) << running.errors();
    if (before < 0) {
        running.terminate();
        GTEST_SKIP() << "this system does not show the memory of a child";
    }
    EXPECT_EQ(before > 0, held_before);
    EXPECT_EQ(count_in_memory(running.id(), PASSWORD), 0);
    std::ifstream environment("/proc/" + std::to_string(running.id()) + "/environ");
    const std::string variables((std::istreambuf_iterator<char>(environment)), std::istreambuf_iterator<char>());
    EXPECT_EQ(variables.find(PASSWORD), std::string::npos);
    running.terminate();
}

TEST(password, of_the_command_line_is_gone_at_the_first_record) {
    expect_forgotten({.program = "", .arguments = {std::string("--pwd=") + PASSWORD}}, true);
}

TEST(password, of_the_environment_is_gone_at_the_first_record) {
#ifdef IFWATCH_ADDRESS_SANITIZER
    GTEST_SKIP() << "the address sanitizer keeps a copy of the environment for itself";
#endif
    expect_forgotten({.program = "", .environment = {{"TRACE_PWD", PASSWORD}}}, true);
}

TEST(password, typed_is_gone_at_the_first_record) {
    // It is asked for when the challenge comes.
    expect_forgotten({.program = "", .input = std::string(PASSWORD) + "\n"}, false);
}

TEST(password, of_the_environment_is_not_handed_to_the_analyser) {
    const temp_directory directory;
    const std::string seen = directory.file("environment");
    const std::string analyser = directory.write(
        "analyser", "#!/bin/sh\nenv > " + seen + ".new\nmv " + seen + ".new " + seen + "\ncat \"$1\" > /dev/null\n");
    ASSERT_EQ(chmod(analyser.c_str(), 0700), 0);
    const scripted_daemon daemon(serving(1));
    const outcome got = run({.program = IFWATCH_PROGRAM,
                             .arguments = {"-V1", "--ethereal", "--ofile=" + directory.file("pipe"),
                                           daemon.port_option(), "127.0.0.1", "1000"},
                             .environment = {{"TRACE_PWD", PASSWORD}, {"TRACE_EXEC", analyser}}});
    EXPECT_EQ(got.status, 0) << got.errors;
    std::string variables;
    ASSERT_TRUE(read_file(seen, variables));
    EXPECT_NE(variables.find("TRACE_EXEC="), std::string::npos);
    EXPECT_EQ(variables.find("TRACE_PWD"), std::string::npos);
}

// --- The system calls. A build without the filter has nothing to show here.

#ifdef IFWATCH_HAS_SECCOMP

/// Runs the attempts in a confined child; what they return is their errno, one octet each, or 0.
template <std::size_t N>
std::array<std::uint8_t, N> errors_when_confined(const record_loop_files& files, int report_fd, int result_fd,
                                                 const std::array<int (*)(), N>& attempts) {
    std::array<std::uint8_t, N> errors{};
    const pid_t child = fork();
    if (child == 0) {
        if (confine_to_record_loop(files) != 0) {
            _exit(2);
        }
        for (std::size_t i = 0; i < N; ++i) {
            errno = 0;
            errors[i] = attempts[i]() < 0 ? static_cast<std::uint8_t>(errno) : std::uint8_t{0};
        }
        _exit(write(report_fd, errors.data(), N) == static_cast<ssize_t>(N) ? 0 : 3);
    }
    int status = -1;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
        EXPECT_EQ(read(result_fd, errors.data(), N), static_cast<ssize_t>(N));
    } else {
        ADD_FAILURE() << "the child ended with status " << std::hex << status << "; 200: the system refused the filter";
    }
    return errors;
}

struct pipe_pair {
    pipe_pair() { EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0); }
    ~pipe_pair() {
        close(ends[0]);
        close(ends[1]);
    }
    pipe_pair(const pipe_pair&) = delete;
    pipe_pair& operator=(const pipe_pair&) = delete;
    pipe_pair(pipe_pair&&) = delete;
    pipe_pair& operator=(pipe_pair&&) = delete;

    std::array<int, 2> ends{};
};

TEST(confinement, other_calls_are_refused) {
    const pipe_pair sink;
    const auto errors = errors_when_confined<9>(
        {.input_fd = STDIN_FILENO, .sink_fd = sink.ends[1]}, sink.ends[1], sink.ends[0],
        {[] { return open("/etc/passwd", O_RDONLY | O_CLOEXEC); }, [] { return socket(AF_INET, SOCK_STREAM, 0); },
         [] { return static_cast<int>(fork()); }, [] { return execl("/bin/true", "true", nullptr); },
         [] { return kill(getppid(), 0); }, [] { return unlink("/nowhere"); },
         [] { return static_cast<int>(write(STDIN_FILENO, "", 1)); },
         [] { return static_cast<int>(syscall(SYS_clock_gettime, CLOCK_MONOTONIC, nullptr)); },
         [] { return static_cast<int>(syscall(SYS_rt_sigreturn)); }});  // it would end the child
    for (const std::uint8_t error : errors) {
        EXPECT_EQ(error, EPERM) << &error - errors.data();
    }
}

TEST(confinement, what_the_handlers_of_a_pipe_need_is_left) {
    const pipe_pair sink;
    const auto errors = errors_when_confined<4>(
        {.input_fd = STDIN_FILENO, .sink_fd = sink.ends[1], .has_pipe = true}, sink.ends[1], sink.ends[0],
        {[] { return unlink("/nowhere"); }, [] { return std::signal(SIGTERM, SIG_IGN) == SIG_ERR ? -1 : 0; },
         [] { return std::raise(SIGTERM) == 0 ? 0 : -1; }, [] { return socket(AF_INET, SOCK_STREAM, 0); }});
    EXPECT_EQ(errors, (std::array<std::uint8_t, 4>{ENOENT, 0, 0, EPERM}));
}

/// The value of a line of /proc/PID/status.
std::string status_of(pid_t id, const std::string& name) {
    std::ifstream lines("/proc/" + std::to_string(id) + "/status");
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(name + ":\t")) {
            return line.substr(name.size() + 2);
        }
    }
    return "";
}

TEST(confinement, the_tracer_is_confined_at_its_first_record) {
    const scripted_daemon daemon(serving(1, true));
    process tracer({.program = IFWATCH_PROGRAM, .arguments = {"-v", "-V1", daemon.port_option(), "127.0.0.1", "1000"}});
    ASSERT_TRUE(tracer.wait_for_output(FIRST_RECORD));
    EXPECT_EQ(status_of(tracer.id(), "Seccomp"), "2") << tracer.errors();
    EXPECT_EQ(status_of(tracer.id(), "NoNewPrivs"), "1");
    EXPECT_EQ(tracer.errors().find("not confined"), std::string::npos);
    tracer.terminate();
}

#endif

}  // namespace
}  // namespace ifwatch::test
