#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace ifwatch::test {

/// The daemon's end of one connection, for a script to act on. Sending to a client that has gone does nothing.
class scripted_peer {
public:
    explicit scripted_peer(int socket) : socket_(socket) {}

    [[nodiscard]] int socket() const { return socket_; }

    void send(std::initializer_list<int> octets) const;
    void send(std::span<const std::uint8_t> octets) const;
    void send_element(std::uint8_t type, std::initializer_list<int> data = {}) const;
    void send_element(std::uint8_t type, std::string_view text) const;

    /// The next `n` octets; fewer when the client closes before.
    std::vector<std::uint8_t> receive(std::size_t n) const;

    /// Everything up to the client's end of the stream.
    std::vector<std::uint8_t> receive_all() const;

private:
    int socket_;
};

/// Listens on the loopback and runs a script for every connection, one after another, on a thread of its own: the
/// first script for the first connection and so on, the last one for all that follow. A connection is closed when its
/// script returns. Going, the object ends the running script's connection and waits for the script.
class scripted_daemon {
public:
    using script = std::function<void(scripted_peer& client)>;

    explicit scripted_daemon(script every);
    explicit scripted_daemon(std::vector<script> scripts);
    ~scripted_daemon();
    scripted_daemon(const scripted_daemon&) = delete;
    scripted_daemon& operator=(const scripted_daemon&) = delete;

    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] std::string port_option() const { return "-P" + std::to_string(port_); }

private:
    void serve();

    std::vector<script> scripts_;
    int port_ = 0;  // set while the listener is opened, so declared before it
    int listener_ = -1;
    std::mutex mutex_;  // over the next two
    int client_ = -1;
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace ifwatch::test
