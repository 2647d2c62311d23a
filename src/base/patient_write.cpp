#include "base/patient_write.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace ifwatch {

long write_patiently(int fd, const char* data, std::size_t length) {
    while (true) {
        const long written = write(fd, data, length);
        if (written >= 0 || errno != EAGAIN) {
            return written;
        }
        pollfd stream{fd, POLLOUT, 0};
        if (poll(&stream, 1, -1) < 0 && errno != EINTR) {
            return -1;
        }
    }
}

bool write_whole(int fd, std::string_view text) {
    while (!text.empty()) {
        const long written = write_patiently(fd, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0) {
            errno = EIO;
            return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

}  // namespace ifwatch
