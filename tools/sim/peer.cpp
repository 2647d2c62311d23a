#include "sim/peer.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <thread>

#include "trace/element.h"

namespace ifwatch::sim {

namespace {

using namespace std::chrono_literals;
using clock = std::chrono::steady_clock;

constexpr auto DRIP_PAUSE = 200us;
constexpr auto LINGER = 2s;

/// Reads away what has arrived. False at the end of the stream.
bool discard_input(int socket) {
    std::uint8_t scratch[1024];
    const auto count = recv(socket, scratch, sizeof scratch, MSG_DONTWAIT);
    return count > 0 || (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR));
}

int milliseconds_until(peer::time_point when) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(when - clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
}

}  // namespace

bool peer::send(std::span<const std::uint8_t> octets) const {
    if (!drip_) {
        return write_all(socket_, octets);
    }
    const int on = 1;
    setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    for (; !octets.empty(); octets = octets.subspan(1)) {
        if (!write_all(socket_, octets.first(1))) {
            return false;
        }
        std::this_thread::sleep_for(DRIP_PAUSE);
    }
    return true;
}

bool peer::wait_until(time_point when) const {
    while (clock::now() < when) {
        pollfd watched[] = {{socket_, POLLIN, 0}, {stop_, POLLIN, 0}};
        const int ready = poll(watched, 2, milliseconds_until(when));
        if (ready < 0 && errno != EINTR) {
            return false;
        }
        if (ready > 0 && (watched[1].revents != 0 || (watched[0].revents != 0 && !discard_input(socket_)))) {
            return false;
        }
    }
    return true;
}

void peer::wait_for_end() const {
    while (wait_until(clock::now() + 1h)) {
    }
}

void peer::finish() const {
    shutdown(socket_, SHUT_WR);
    static_cast<void>(wait_until(clock::now() + LINGER));
}

}  // namespace ifwatch::sim
