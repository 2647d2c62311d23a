#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace ifwatch::test {

/// A FIFO and its reading end, which is there before anybody writes.
class read_fifo {
public:
    explicit read_fifo(std::string name) : name_(std::move(name)) {
        if (mkfifo(name_.c_str(), 0600) == 0) {
            fd_ = open(name_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        }
        if (fd_ < 0) {
            throw std::system_error(errno, std::generic_category(), name_);
        }
    }
    ~read_fifo() { close_end(); }
    read_fifo(const read_fifo&) = delete;
    read_fifo& operator=(const read_fifo&) = delete;

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] int fd() const { return fd_; }

    void close_end() {
        if (fd_ >= 0) {
            close(fd_);
            fd_ = -1;
        }
    }

private:
    std::string name_;
    int fd_ = -1;
};

}  // namespace ifwatch::test
