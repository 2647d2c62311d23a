#include "base/patient_write.h"

#include <poll.h>

namespace ifwatch {

bool wait_for_room(int fd) {
    pollfd stream{fd, POLLOUT, 0};
    return poll(&stream, 1, -1) >= 0 || errno == EINTR;
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
