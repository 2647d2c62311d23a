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
    [[nodiscard]] bool send(std::span<const std::uint8_t> octets) const;

    /// Waits. False when the client has gone or the daemon is to end before that time.
    [[nodiscard]] bool wait_until(time_point when) const;

    /// Waits until the client has gone or the daemon is to end.
    void wait_for_end() const;

    /// Closes our direction and reads away what the client still sends, so that what was sent reaches it whole.
    void finish() const;

private:
    int socket_;
    int stop_;
    bool drip_;
};

}  // namespace ifwatch::sim
