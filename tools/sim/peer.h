#pragma once

#include <chrono>
#include <cstdint>
#include <span>

namespace ifwatch::sim {

/// One client: its socket, and the descriptor that becomes readable when the daemon is to end.
class peer {
public:
    using time_point = std::chrono::steady_clock::time_point;

    peer(int socket, int stop, bool drip) : socket_(socket), stop_(stop), drip_(drip) {}

    [[nodiscard]] int socket() const { return socket_; }

    /// Sends everything, with the drip fault octet by octet. False when the client has gone.
    bool send(std::span<const std::uint8_t> octets);

    /// Waits. False when the client has gone or the daemon is to end before that time.
    bool wait_until(time_point when);

    /// Waits until the client has gone or the daemon is to end.
    void wait_for_end();

    /// Closes our direction and reads away what the client still sends, so that what was sent reaches it whole.
    void finish();

private:
    int socket_;
    int stop_;
    bool drip_;
};

}  // namespace ifwatch::sim
