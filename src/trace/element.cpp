#include "trace/element.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "base/byte_order.h"

namespace ifwatch {

int read_n(int fd, std::uint8_t* buffer, int n) {
    int done = 0;
    while (done < n) {
        const ssize_t count = read(fd, buffer + done, static_cast<std::size_t>(n - done));
        if (count > 0) {
            done += static_cast<int>(count);
        } else if (count == 0) {
            return 0;
        } else if (errno != EINTR) {
            return -1;
        }
    }
    return n;
}

const char* read_element(int fd, std::uint32_t& header, std::span<std::uint8_t> buffer) {
    header = 0;
    std::uint8_t word[4];
    if (read_n(fd, word, sizeof word) != sizeof word) {
        return "missing elem header data";
    }
    header = load_be32(word);
    const std::uint32_t length = element_data_length(header);
    if (length >= buffer.size()) {
        return length == 0 ? nullptr : "read buffer overflow";
    }
    const int wanted = static_cast<int>(length);
    return read_n(fd, buffer.data(), wanted) == wanted ? nullptr : "missing elem data";
}

bool write_all(int fd, std::span<const std::uint8_t> buffer) {
    while (!buffer.empty()) {
        const ssize_t written = send(fd, buffer.data(), buffer.size(), MSG_NOSIGNAL);
        if (written >= 0) {
            buffer = buffer.subspan(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

}  // namespace ifwatch
