// A report of which the error stream takes a single octet at first.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "base/print.h"
#include "support/octet_pipe.h"
#include "support/replaced_descriptor.h"

namespace ifwatch {
namespace {

using namespace std::chrono_literals;

int held_in(int fd) {
    int held = 0;
    return ioctl(fd, FIONREAD, &held) == 0 ? held : -1;
}

std::string read_octets(int fd, std::size_t wanted) {
    std::string all;
    char block[4096];
    ssize_t count = 1;
    while (all.size() < wanted && count > 0) {
        count = read(fd, block, sizeof block);
        all.append(block, count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return all;
}

TEST(report, goes_on_behind_a_single_octet) {
    octet_pipe errors;
    const int page = fcntl(errors.writer(), F_SETPIPE_SZ, 1);
    ASSERT_GT(page, 1);
    // Where the pipe has one page, and something in it, the system takes what fits there before it needs another.
    ASSERT_EQ(write(errors.writer(), "-", 1), 1);
    fcntl(errors.writer(), F_SETFL, O_NONBLOCK);
    const std::string text(static_cast<std::size_t>(page) + 1, 'x');
    std::string got;
    std::thread reader([&] {
        const auto until = std::chrono::steady_clock::now() + 10s;
        while (held_in(errors.reader()) < 2 && std::chrono::steady_clock::now() < until) {
            std::this_thread::sleep_for(1ms);
        }
        EXPECT_EQ(held_in(errors.reader()), 2) << "what the first write has left";
        got = read_octets(errors.reader(), 1 + text.size());
    });
    {
        const test::replaced_descriptor captured(STDERR_FILENO, errors.writer());
        write_report(text);
    }
    errors.close_writer();
    reader.join();
    EXPECT_EQ(got, "-" + text);
}

}  // namespace
}  // namespace ifwatch
