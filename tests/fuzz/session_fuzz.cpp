// A daemon may send what it likes: the set-up ends in one of its three ways, and a stream that follows is decoded to
// its end. The input is all that the daemon sends, behind a header of the target's own:
//
//     octet  0     bits 0-1 version, bit 2 list mode, bit 3 a PCAP sink, bit 4 decode beside the sink, bits 5-6 how
//                  talkative
//     octets 1-4   mode flags, little-endian

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "base/byte_order.h"
#include "base/print.h"
#include "base/verbose.h"
#include "display/display_context.h"
#include "display_check.h"
#include "trace/element.h"
#include "trace/record_stream.h"
#include "trace/session.h"

namespace {

using namespace ifwatch;
using fuzz::require;

constexpr std::size_t HEADER = 5;
constexpr std::size_t STREAM_MAXIMUM = 60000;  // less than a socket buffer, so that one write takes all

constexpr int LIST_MODE = 0x04;
constexpr int PCAP_SINK = 0x08;
constexpr int PRINT = 0x10;

// The time of the last write. NOLINTNEXTLINE(*-avoid-non-const-global-variables): the writer has no other place for it
std::int64_t last_write_ns = 0;

/// Each record that is shown ends with a write, so between two writes lies at most the time of one that is.
long time_output(const char* /*data*/, std::size_t length) {
    const std::int64_t now = fuzz::thread_time_ns();
    require(now - last_write_ns <= fuzz::RECORD_TIME_MAXIMUM_NS, "a record takes at most 50 ms");
    last_write_ns = now;
    return static_cast<long>(length);
}

long drop_output(const char* /*data*/, std::size_t length) { return static_cast<long>(length); }

/// Our end of a connection whose daemon has sent all it will ever send.
int connection_with(std::span<const std::uint8_t> sent, int& daemon_end) {
    std::array<int, 2> ends{};
    require(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == 0, "there is a socket pair");
    daemon_end = ends[1];
    write_all(daemon_end, sent.first(std::min(sent.size(), STREAM_MAXIMUM)));
    shutdown(daemon_end, SHUT_WR);
    return ends[0];
}

void receive(int connection, int ways, display_context& context) {
    stream_settings settings{.pcap_fd = -1, .print = (ways & PRINT) != 0};
    if ((ways & PCAP_SINK) != 0) {
        settings.pcap_fd = open("/dev/null", O_WRONLY | O_CLOEXEC);
    }
    set_output_writer(time_output);
    last_write_ns = fuzz::thread_time_ns();
    require(receive_records(connection, settings, context) == 0, "the stream comes to its end");
    fuzz::check_state(context);
    if (settings.pcap_fd >= 0) {
        close(settings.pcap_fd);
    }
}

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    if (size < HEADER) {
        return 0;
    }
    set_output_writer(drop_output);
    const int ways = data[0];
    verbose_level = ways >> 5 & 3;
    const session_settings settings{.password = "secret", .list_mode = (ways & LIST_MODE) != 0};
    display_context context;
    init_display_context(context);
    context.mode_flags = load_le32(data + 1);
    int daemon_end = -1;
    const int connection = connection_with({data + HEADER, size - HEADER}, daemon_end);
    int socket_fd = -1;
    const std::array<std::uint8_t, 8> addinfo{0, 0, 0, ELEMENT_START};
    const int result = set_up_session(connection, ways & 3, socket_fd, settings, trace_target{}, addinfo, context);
    require(result >= -1 && result <= 255, "the set-up succeeds, fails or names a version");
    require((result == 0) == (socket_fd == connection), "there is a socket exactly when it succeeds");
    if (result == 0) {
        receive(socket_fd, ways, context);
        close(socket_fd);
    }
    close(daemon_end);
    return 0;
}
