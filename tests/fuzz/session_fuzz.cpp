// A daemon may send what it likes: the set-up ends in one of its three ways, and a stream that follows is decoded to
// its end. The input is all that the daemon sends; its first octet chooses the version and the list mode.

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "base/print.h"
#include "display/display_context.h"
#include "trace/element.h"
#include "trace/record_stream.h"
#include "trace/session.h"

namespace {

using namespace ifwatch;

constexpr std::size_t STREAM_MAXIMUM = 60000;  // less than a socket buffer, so that one write takes all

long drop_output(const char* /*data*/, std::size_t length) { return static_cast<long>(length); }

/// Our end of a connection whose daemon has sent all it will ever send.
int connection_with(std::span<const std::uint8_t> sent, int& daemon_end) {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) {
        std::abort();
    }
    daemon_end = ends[1];
    write_all(daemon_end, sent.first(std::min(sent.size(), STREAM_MAXIMUM)));
    shutdown(daemon_end, SHUT_WR);
    return ends[0];
}

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    if (size == 0) {
        return 0;
    }
    set_output_writer(drop_output);
    const int version = data[0] & 3;
    const session_settings settings{.password = "secret", .list_mode = (data[0] & 4) != 0};
    display_context context;
    init_display_context(context);
    int daemon_end = -1;
    const int connection = connection_with({data + 1, size - 1}, daemon_end);
    int socket_fd = -1;
    const std::array<std::uint8_t, 8> addinfo{0, 0, 0, ELEMENT_START};
    const int result = set_up_session(connection, version, socket_fd, settings, trace_target{}, addinfo, context);
    if (result < -1 || result > 255 || (result == 0) != (socket_fd == connection)) {
        std::abort();
    }
    if (result == 0) {
        receive_records(socket_fd, {}, context);
        close(socket_fd);
    }
    close(daemon_end);
    return 0;
}
