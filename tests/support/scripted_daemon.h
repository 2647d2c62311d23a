#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/tcp_peer.h"

namespace ifwatch::test {

/// Listens on the loopback and runs a script for every connection, one after another, on a thread of its own: the
/// first script for the first connection and so on, the last one for all that follow. A connection is closed when its
/// script returns. Going, the object ends the running script's connection and waits for the script.
class scripted_daemon {
public:
    using script = std::function<void(const tcp_peer& client)>;

    explicit scripted_daemon(script every);
    explicit scripted_daemon(std::vector<script> scripts);
    ~scripted_daemon();
    scripted_daemon(const scripted_daemon&) = delete;
    scripted_daemon& operator=(const scripted_daemon&) = delete;
    scripted_daemon(scripted_daemon&&) = delete;
    scripted_daemon& operator=(scripted_daemon&&) = delete;

    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] std::string port_option() const { return "-P" + std::to_string(port_); }

private:
    void serve();

    std::vector<script> scripts_;
    int port_ = 0;
    int listener_ = -1;
    std::mutex mutex_;  // over the next two
    int client_ = -1;
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace ifwatch::test
