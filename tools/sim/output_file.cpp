#include "sim/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/patient_write.h"
#include "base/print.h"

namespace ifwatch::sim {

namespace {

constexpr mode_t FILE_MODE = 0666;  // less the umask

bool write_and_close(int fd, std::string_view text) {
    const bool written = write_whole(fd, text);
    const int reason = errno;
    const bool closed = close(fd) == 0;
    errno = written ? errno : reason;
    return written && closed;
}

bool is_special(const std::string& path) {
    struct stat entry {};
    return stat(path.c_str(), &entry) == 0 && !S_ISREG(entry.st_mode);
}

bool write_in_place(const std::string& path, std::string_view text) {
    const int fd = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    return fd >= 0 && write_and_close(fd, text);
}

/// Writes a file beside the path and gives it the name when it is complete.
bool write_beside(const std::string& path, std::string_view text) {
    const std::string unfinished = path + ".new-" + std::to_string(getpid());
    const int fd = open(unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, FILE_MODE);
    if (fd < 0) {
        return false;
    }
    if (write_and_close(fd, text) && std::rename(unfinished.c_str(), path.c_str()) == 0) {
        return true;
    }
    const int reason = errno;
    unlink(unfinished.c_str());
    errno = reason;
    return false;
}

}  // namespace

bool write_output(const std::string& path, std::string_view text, std::string& error) {
    bool written = false;
    if (path.empty()) {
        put(standard_output, text);
        written = flush_output();
        errno = output_error();
    } else {
        written = is_special(path) ? write_in_place(path, text) : write_beside(path, text);
    }
    if (!written) {
        error = (path.empty() ? "standard output" : path) + ": " + std::strerror(errno);
    }
    return written;
}

bool write_output(const std::string& path, std::span<const std::uint8_t> octets, std::string& error) {
    // Octets and characters are the same storage; the cast only changes how they are named.
    return write_output(path, std::string_view(reinterpret_cast<const char*>(octets.data()), octets.size()), error);
}

}  // namespace ifwatch::sim
