#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ifwatch {

/// A pipe that is filled at once, to read a stream from without a network. At most what the system's pipe buffer
/// holds.
class octet_pipe {
public:
    octet_pipe() {
        if (pipe2(ends_, O_CLOEXEC) != 0) {
            ends_[0] = ends_[1] = -1;
        }
    }
    explicit octet_pipe(const std::vector<std::uint8_t>& stream) : octet_pipe() {
        if (write(ends_[1], stream.data(), stream.size()) != static_cast<ssize_t>(stream.size())) {
            close(ends_[0]);
        }
        close_writer();
    }
    ~octet_pipe() {
        close_writer();
        close(ends_[0]);
    }
    octet_pipe(const octet_pipe&) = delete;
    octet_pipe& operator=(const octet_pipe&) = delete;
    octet_pipe(octet_pipe&&) = delete;
    octet_pipe& operator=(octet_pipe&&) = delete;

    [[nodiscard]] int reader() const { return ends_[0]; }
    [[nodiscard]] int writer() const { return ends_[1]; }

    void close_writer() {
        if (ends_[1] >= 0) {
            close(ends_[1]);
            ends_[1] = -1;
        }
    }

    /// Closes the writing end and reads what was written.
    [[nodiscard]] std::string drain() {
        close_writer();
        std::string all;
        char block[4096];
        for (ssize_t count = read(ends_[0], block, sizeof block); count > 0;
             count = read(ends_[0], block, sizeof block)) {
            all.append(block, static_cast<std::size_t>(count));
        }
        return all;
    }

private:
    int ends_[2] = {-1, -1};
};

}  // namespace ifwatch
