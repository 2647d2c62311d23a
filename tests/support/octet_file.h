#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <span>
#include <stdexcept>

namespace ifwatch::test {

/// A file without a name that holds these octets, to read a stream from.
class octet_file {
public:
    explicit octet_file(std::span<const std::uint8_t> octets) : file_(std::tmpfile()) {
        const bool filled =
            file_ != nullptr && (octets.empty() || std::fwrite(octets.data(), octets.size(), 1, file_) == 1);
        if (!filled || std::fflush(file_) != 0) {
            throw std::runtime_error("no temporary file");
        }
        rewind();
    }
    ~octet_file() { static_cast<void>(std::fclose(file_)); }
    octet_file(const octet_file&) = delete;
    octet_file& operator=(const octet_file&) = delete;
    octet_file(octet_file&&) = delete;
    octet_file& operator=(octet_file&&) = delete;

    [[nodiscard]] int fd() const { return fileno(file_); }
    void rewind() const { lseek(fd(), 0, SEEK_SET); }

private:
    std::FILE* file_;
};

}  // namespace ifwatch::test
