// Reads, writes and connects that a signal interrupts are taken up again, and wait only where there is something to
// wait for.

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/patient_write.h"
#include "base/print.h"
#include "base/terminal_text.h"
#include "display/display_context.h"
#include "support/interruption.h"
#include "support/octet_pipe.h"
#include "support/replaced_descriptor.h"
#include "trace/auth.h"
#include "trace/connect.h"
#include "trace/element.h"
#include "trace/pcap.h"

namespace ifwatch::test {
namespace {

/// A pipe that takes nothing more until it is read.
class full_pipe : public octet_pipe {
public:
    full_pipe() : filling_(static_cast<std::size_t>(fcntl(writer(), F_SETPIPE_SZ, 1)), '-') {
        if (write(writer(), filling_.data(), filling_.size()) != static_cast<ssize_t>(filling_.size())) {
            throw std::runtime_error("cannot fill a pipe");
        }
    }

    /// Reads the filling away, so that there is room.
    void make_room() {
        const auto all = static_cast<int>(filling_.size());
        EXPECT_EQ(read_n(reader(), filling_.data(), all), all);
    }

private:
    std::vector<std::uint8_t> filling_;
};

TEST(interrupted_call, read_n_goes_on) {
    const octet_pipe pipe;
    std::array<std::uint8_t, 3> buffer{};
    const interruption signals([&pipe] { EXPECT_EQ(write(pipe.writer(), "abc", 3), 3); });
    EXPECT_EQ(read_n(pipe.reader(), buffer.data(), 3), 3);
    EXPECT_EQ(buffer, (std::array<std::uint8_t, 3>{'a', 'b', 'c'}));
}

TEST(interrupted_call, write_all_goes_on) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    const std::vector<std::uint8_t> message(1000000, 0x5A);  // more than a socket holds
    std::vector<std::uint8_t> received(message.size());
    {
        const interruption signals([&ends, &received] {
            const auto all = static_cast<int>(received.size());
            EXPECT_EQ(read_n(ends[1], received.data(), all), all);
        });
        EXPECT_TRUE(write_all(ends[0], message));
        shutdown(ends[0], SHUT_WR);  // a reader that misses something shall not wait for it
    }
    EXPECT_EQ(received, message);
    close(ends[0]);
    close(ends[1]);
}

TEST(interrupted_call, a_pcap_header_is_written) {
    full_pipe pipe;
    const display_context context;
    const interruption signals([&pipe] { pipe.make_room(); });
    EXPECT_EQ(write_pcap_header(pipe.writer(), context, 1), PCAP_HEADER_LENGTH);
}

TEST(interrupted_call, a_pcap_record_is_written_in_parts) {
    const octet_pipe pipe;
    ASSERT_GT(fcntl(pipe.writer(), F_SETPIPE_SZ, 1), 0);
    std::vector<std::uint8_t> frame(8192, 0xA5);  // more than the pipe holds
    const record_header header;
    display_context context;
    context.header = &header;
    context.payload = octets_of(frame);
    std::vector<std::uint8_t> received(16 + frame.size());
    testing::internal::CaptureStderr();
    {
        const interruption signals([&pipe, &received] {
            const auto all = static_cast<int>(received.size());
            EXPECT_EQ(read_n(pipe.reader(), received.data(), all), all);
        });
        EXPECT_EQ(write_pcap_record(pipe.writer(), context), 0);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(std::equal(frame.begin(), frame.end(), received.begin() + 16));
}

TEST(interrupted_call, a_report_is_written) {
    full_pipe pipe;
    {
        const replaced_descriptor errors(STDERR_FILENO, pipe.writer());
        const interruption signals([&pipe] { pipe.make_room(); });
        write_report("ERROR of some kind\n");
    }
    EXPECT_EQ(pipe.drain(), "ERROR of some kind\n");
}

TEST(interrupted_call, a_text_for_a_terminal_is_written) {
    full_pipe pipe;
    {
        const interruption signals([&pipe] { pipe.make_room(); });
        EXPECT_TRUE(write_terminal_text(pipe.writer(), "\x1b[2J\n"));
    }
    EXPECT_EQ(pipe.drain(), "\\x1b[2J\n");
}

TEST(interrupted_call, a_text_for_a_terminal_waits_for_room_where_the_stream_does_not_block) {
    full_pipe pipe;
    fcntl(pipe.writer(), F_SETFL, O_WRONLY | O_NONBLOCK);
    {
        const interruption signals([&pipe] { pipe.make_room(); });
        EXPECT_TRUE(write_terminal_text(pipe.writer(), "\x1b[2J\n"));
    }
    EXPECT_EQ(pipe.drain(), "\\x1b[2J\n");
}

TEST(write_patiently, does_not_wait_to_write_nothing) {
    const full_pipe pipe;
    alarm(10);       // ends a test that waits
    errno = EAGAIN;  // of an earlier call
    EXPECT_EQ(write_patiently(pipe.writer(), "", 0), 0);
    alarm(0);
}

TEST(interrupted_call, a_password_is_read) {
    const octet_pipe pipe;
    const replaced_descriptor input(STDIN_FILENO, pipe.reader());
    std::array<char, 32> password{};
    testing::internal::CaptureStderr();
    {
        const interruption signals([&pipe] { EXPECT_EQ(write(pipe.writer(), "secret\n", 7), 7); });
        prompt_password("Password: ", password);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Password: ");
    EXPECT_STREQ(password.data(), "secret");
}

/// Listens on the loopback for one connection, which it has: another is kept waiting.
class busy_listener {
public:
    busy_listener() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        // The socket calls take every kind of address as a sockaddr.
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        if (bind(listener_, generic, length) != 0 || listen(listener_, 0) != 0 ||
            getsockname(listener_, generic, &length) != 0 || connect(first_, generic, length) != 0) {
            throw std::runtime_error("cannot listen on the loopback");
        }
        port_ = ntohs(address.sin_port);
    }
    ~busy_listener() {
        end();
        close(first_);
        close(accepted_);
    }
    busy_listener(const busy_listener&) = delete;
    busy_listener& operator=(const busy_listener&) = delete;
    busy_listener(busy_listener&&) = delete;
    busy_listener& operator=(busy_listener&&) = delete;

    [[nodiscard]] std::uint16_t port() const { return port_; }

    /// Makes room for the next.
    void accept_first() { accepted_ = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC); }
    void end() {
        close(listener_);
        listener_ = -1;
    }

private:
    int listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int first_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int accepted_ = -1;
    std::uint16_t port_ = 0;
};

// The system tries again after a second: each of these takes so long.

TEST(interrupted_call, a_connection_is_made) {
    busy_listener daemon;
    const interruption signals([&daemon] { daemon.accept_first(); });
    const int socket_fd = connect_trace({.host = "127.0.0.1", .port = daemon.port()}, 1);
    EXPECT_GE(socket_fd, 0);
    close(socket_fd);
}

TEST(interrupted_call, a_connection_is_refused) {
    busy_listener daemon;
    testing::internal::CaptureStderr();
    {
        const interruption signals([&daemon] { daemon.end(); });
        EXPECT_EQ(connect_trace({.host = "127.0.0.1", .port = daemon.port()}, 1), -1);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERROR connect (Connection refused)\n");
}

}  // namespace
}  // namespace ifwatch::test
