// Readers that take their time: of the standard output, of both streams at once, of the PCAP pipe. The program waits
// for them and loses nothing, whether the stream blocks or not.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/process.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"
#include "trace/element.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;

using octet_list = std::vector<std::uint8_t>;

constexpr std::uint8_t RECORDS = 250;

/// The end of a pipe from which a test reads little by little.
class slow_end {
public:
    explicit slow_end(int fd) : fd_(fd), size_(fcntl(fd, F_SETPIPE_SZ, 1)) {}
    ~slow_end() { close(fd_); }
    slow_end(const slow_end&) = delete;
    slow_end& operator=(const slow_end&) = delete;
    slow_end(slow_end&&) = delete;
    slow_end& operator=(slow_end&&) = delete;

    /// Waits until the pipe has no room for a short record any more.
    [[nodiscard]] bool wait_until_full() const {
        const auto until = std::chrono::steady_clock::now() + 10s;
        for (int held = 0; std::chrono::steady_clock::now() < until; std::this_thread::sleep_for(1ms)) {
            if (ioctl(fd_, FIONREAD, &held) == 0 && size_ - held < 200) {
                return true;
            }
        }
        return false;
    }

    /// Reads to the end, a few octets at a time.
    [[nodiscard]] std::string drain() const {
        std::string all;
        char block[61];
        for (ssize_t count = 1; count > 0;) {
            count = read(fd_, block, 1 + all.size() % sizeof block);
            all.append(block, count > 0 ? static_cast<std::size_t>(count) : 0);
        }
        return all;
    }

private:
    int fd_;
    int size_;
};

/// A pipe for a program to write to, and the slow reader's end of it.
struct slow_pipe {
    explicit slow_pipe(bool blocking) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe");
        }
        read_fd = ends[0];
        write_fd = ends[1];
        if (!blocking) {
            fcntl(write_fd, F_SETFL, O_NONBLOCK);  // of the open file: for everyone who writes to it
        }
    }

    int read_fd = -1;
    int write_fd = -1;
};

class slow_output : public testing::TestWithParam<bool> {
protected:
    /// What the program has written at its end to a standard output that is read when it can take no more.
    std::string output_of(command what, int& status) {
        const slow_pipe pipe(GetParam());
        what.output_fd = pipe.write_fd;
        process program(what);
        close(pipe.write_fd);
        const slow_end reader(pipe.read_fd);
        EXPECT_TRUE(reader.wait_until_full());
        const std::string all = reader.drain();
        const outcome got = program.wait();
        status = got.status;
        errors = got.errors;
        return all;
    }

    std::string errors;
};

/// Short records, and longest ones whose display fills several pipes.
scripted_daemon::script many_records() {
    return [](const tcp_peer& client) {
        serving(RECORDS)(client);
        for (int i = 0; i < 2; ++i) {
            client.send(trace_record(RECORDS, octet_list(8192, 0x5A)));
        }
    };
}

TEST_P(slow_output, gets_every_record) {
    const scripted_daemon daemon(many_records());
    const std::vector<std::string> arguments = {"-V1", "-t", "-h", "-!", "127.0.0.1", "1000"};
    const outcome at_once = trace(daemon, arguments);
    int status = -1;
    EXPECT_EQ(output_of(tracing(daemon, arguments), status), at_once.output);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(errors, at_once.errors);
    EXPECT_GT(at_once.output.size(), 60000U) << "longer than a buffer of the program";
}

TEST_P(slow_output, gets_the_reports_too) {
    constexpr int INTERFACES = 1000;
    const scripted_daemon daemon([](const tcp_peer& client) {
        log_in(client);
        for (int i = 0; i < INTERFACES; ++i) {
            client.send_element(11, {0, 0, i >> 8, i & 0xFF, 0, 6, 0, 0});
        }
        client.send_element(0);
    });
    const std::vector<std::string> arguments = {"--pwd=x", "127.0.0.1"};
    const outcome at_once = trace(daemon, arguments);
    command what = tracing(daemon, arguments);
    what.arguments.insert(what.arguments.begin(), {"-c", R"(exec "$0" "$@" 2>&1)", what.program});
    what.program = "sh";
    int status = -1;
    EXPECT_EQ(output_of(what, status), at_once.errors);
    EXPECT_EQ(status, 0);
    EXPECT_GT(at_once.errors.size(), 25U * INTERFACES);
}

INSTANTIATE_TEST_SUITE_P(that, slow_output, testing::Values(true, false),
                         [](const auto& test) { return test.param ? "blocks" : "does_not_block"; });

TEST(gone_reader, of_the_output_ends_the_run_as_the_broken_pipe_does) {
    std::promise<void> gone;
    const scripted_daemon daemon([&gone](const tcp_peer& client) {
        serving(1)(client);
        gone.get_future().wait_for(10s);
        client.send(trace_record(2, {1}));
    });
    const slow_pipe pipe(true);
    command what = tracing(daemon, {"-V1", "127.0.0.1", "1000"});
    what.output_fd = pipe.write_fd;
    process tracer(what);
    close(pipe.write_fd);
    char octet = 0;
    EXPECT_EQ(read(pipe.read_fd, &octet, 1), 1);
    close(pipe.read_fd);
    gone.set_value();
    EXPECT_EQ(tracer.wait().signal, SIGPIPE);
}

TEST(slow_input, is_waited_for) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    octet_list reply;
    const scripted_daemon daemon(logging_in_to(reply, {1, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88}));
    command what = tracing(daemon, {"127.0.0.1", "1000"});
    what.input_fd = ends[0];
    process tracer(what);
    close(ends[0]);
    EXPECT_TRUE(tracer.wait_for_errors("Enter remote password: "));
    for (const char* const part : {"sec", "ret", "\n"}) {
        EXPECT_GT(write(ends[1], part, std::char_traits<char>::length(part)), 0);
    }
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, connected_to(daemon) + "Enter remote password: " + report_of(NO_TYPE, "") + STREAM_END);
    close(ends[1]);
    // printf 'secret\x01\x11\x22\x33\x44\x55\x66\x77\x88secretadmin' | md5sum
    EXPECT_EQ(reply, (octet_list{0, 0, 9, 10, 1, 0xED, 0xB2, 0xA4, 0xC4, 0xE1, 0x65, 0x86, 0x19}));
}

TEST(slow_pcap_reader, gets_every_record) {
    const temp_directory directory;
    const std::string name = directory.file("out");
    const scripted_daemon daemon(serving(RECORDS));
    process tracer(tracing(daemon, {"-V1", "--pcap-pipe", "--ofile=" + name, "127.0.0.1", "1000"}));
    ASSERT_TRUE(tracer.wait_for_errors("start now"));
    const slow_end reader(open(name.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_TRUE(reader.wait_until_full());
    EXPECT_EQ(reader.drain(), pcap_of(RECORDS));
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.errors, testing::EndsWith(STREAM_END));
}

}  // namespace
}  // namespace ifwatch::test
