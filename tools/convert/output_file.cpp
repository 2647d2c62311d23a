#include "convert/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/patient_write.h"
#include "base/print.h"

namespace ifwatch::convert {

namespace {

constexpr mode_t FILE_MODE = 0666;  // less the umask

/// By the edge that shows nothing raw on a terminal.
bool write_to_output(std::string_view text) {
    put(standard_output, text);
    const bool written = flush_output();
    errno = output_error();
    return written;
}

bool is_special(const std::string& path) {
    struct stat entry {};
    return stat(path.c_str(), &entry) == 0 && !S_ISREG(entry.st_mode);
}

}  // namespace

output_file::~output_file() {
    if (fd_ >= 0 && fd_ != STDOUT_FILENO) {
        close(fd_);
    }
    if (!unfinished_.empty()) {
        unlink(unfinished_.c_str());
    }
}

bool output_file::fail(std::string& error) const {
    error = (path_.empty() ? "standard output" : path_) + ": " + std::strerror(errno);
    return false;
}

bool output_file::open(std::string& error) {
    if (path_.empty()) {
        fd_ = STDOUT_FILENO;
    } else if (is_special(path_)) {
        fd_ = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    } else {
        const std::string beside = path_ + ".new-" + std::to_string(getpid());
        fd_ = ::open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, FILE_MODE);
        unfinished_ = fd_ >= 0 ? beside : "";
    }
    return fd_ >= 0 || fail(error);
}

bool output_file::write(std::string_view part, std::string& error) {
    return (fd_ == STDOUT_FILENO ? write_to_output(part) : write_whole(fd_, part)) || fail(error);
}

bool output_file::finish(std::string& error) {
    const int fd = fd_;
    fd_ = -1;
    if (fd != STDOUT_FILENO && close(fd) != 0) {
        return fail(error);
    }
    if (!unfinished_.empty() && std::rename(unfinished_.c_str(), path_.c_str()) != 0) {
        return fail(error);
    }
    unfinished_.clear();
    return true;
}

bool write_output(const std::string& path, std::string_view text, std::string& error) {
    output_file file(path);
    return file.open(error) && file.write(text, error) && file.finish(error);
}

bool write_output(const std::string& path, std::span<const std::uint8_t> octets, std::string& error) {
    // Octets and characters are the same storage; the cast only changes how they are named.
    return write_output(path, std::string_view(reinterpret_cast<const char*>(octets.data()), octets.size()), error);
}

}  // namespace ifwatch::convert
