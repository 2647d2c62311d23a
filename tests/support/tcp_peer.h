#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

namespace ifwatch::test {

/// One end of a TCP connection, for a test to act on. Sending to a peer that has gone does nothing. The socket is not
/// closed here.
class tcp_peer {
public:
    explicit tcp_peer(int socket) : socket_(socket) {}

    [[nodiscard]] int socket() const { return socket_; }

    void send(std::initializer_list<int> octets) const;
    void send(std::span<const std::uint8_t> octets) const;
    void send_element(std::uint8_t type, std::initializer_list<int> data = {}) const;
    void send_element(std::uint8_t type, std::string_view text) const;

    /// Ends our stream; the peer may still send.
    void end_sending() const;

    /// Breaks the connection off: the peer's next read or write fails. What it has not read yet stays readable.
    void reset() const;

    /// The next `n` octets; fewer when the peer closes before.
    std::vector<std::uint8_t> receive(std::size_t n) const;

    /// Everything up to the peer's end of the stream.
    std::vector<std::uint8_t> receive_all() const;

    /// Whether nothing arrives, and the connection stays, for so long.
    [[nodiscard]] bool silent_for(int milliseconds) const;

private:
    int socket_;
};

/// A connection of our own to a port of the loopback, closed when the object goes.
class tcp_client : public tcp_peer {
public:
    explicit tcp_client(int port);
    ~tcp_client();
    tcp_client(const tcp_client&) = delete;
    tcp_client& operator=(const tcp_client&) = delete;
    tcp_client(tcp_client&&) = delete;
    tcp_client& operator=(tcp_client&&) = delete;
};

}  // namespace ifwatch::test
