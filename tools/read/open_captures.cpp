#include "read/open_captures.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace ifwatch::read {

namespace {

/// How much of a plain file is still to be read; nothing of anything else.
std::optional<std::uint64_t> octets_left(int fd) {
    struct stat what = {};
    if (fstat(fd, &what) != 0 || !S_ISREG(what.st_mode)) {
        return std::nullopt;
    }
    const off_t at = lseek(fd, 0, SEEK_CUR);
    return at >= 0 && at < what.st_size ? static_cast<std::uint64_t>(what.st_size - at) : 0;
}

std::string reason_of(int error, std::size_t open_already) {
    const std::string reason = std::strerror(error);
    return error != EMFILE ? reason
                           : reason + ": all files are opened before the first is shown, " +
                                 std::to_string(open_already) + " are, and 'ulimit -n' has the limit";
}

}  // namespace

std::vector<open_capture> open_captures(const std::vector<std::string>& files, std::vector<std::string>& errors) {
    std::vector<open_capture> captures;
    for (const std::string& file : files) {
        if (file == "-") {
            captures.push_back({"standard input", STDIN_FILENO, octets_left(STDIN_FILENO)});
            continue;
        }
        const int fd = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
        if (fd >= 0) {
            captures.push_back({file, fd, octets_left(fd)});
        } else {
            errors.push_back(file + ": " + reason_of(errno, captures.size()));
        }
    }
    return captures;
}

}  // namespace ifwatch::read
