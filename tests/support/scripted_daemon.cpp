#include "support/scripted_daemon.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

namespace ifwatch::test {

namespace {

int open_loopback(int& port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    // The socket calls take every kind of address as a sockaddr.
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0 || bind(listener, generic, length) != 0 || listen(listener, SOMAXCONN) != 0 ||
        getsockname(listener, generic, &length) != 0) {
        throw std::runtime_error("cannot listen on the loopback");
    }
    port = ntohs(address.sin_port);
    return listener;
}

/// What a script sends is to be on its way before it goes on, also when it then breaks the connection off.
void send_at_once(int socket) {
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

/// What was sent must reach a client that has written more than the script read, so the close comes behind its own.
void close_gently(int socket) {
    shutdown(socket, SHUT_WR);
    const timeval patience{2, 0};
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    std::uint8_t scratch[1024];
    while (recv(socket, scratch, sizeof scratch, 0) > 0) {
    }
}

}  // namespace

scripted_daemon::scripted_daemon(script every) : scripted_daemon(std::vector<script>{std::move(every)}) {}

scripted_daemon::scripted_daemon(std::vector<script> scripts)
    : scripts_(std::move(scripts)), listener_(open_loopback(port_)), thread_([this] { serve(); }) {}

scripted_daemon::~scripted_daemon() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        shutdown(listener_, SHUT_RDWR);
        if (client_ >= 0) {
            shutdown(client_, SHUT_RDWR);
        }
    }
    thread_.join();
    close(listener_);
}

void scripted_daemon::serve() {
    for (std::size_t i = 0;; ++i) {
        const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        {
            const std::lock_guard lock(mutex_);
            client_ = socket;
            if (stopping_ || socket < 0) {
                break;
            }
        }
        send_at_once(socket);
        tcp_peer client(socket);
        scripts_[std::min(i, scripts_.size() - 1)](client);
        close_gently(socket);
        const std::lock_guard lock(mutex_);
        close(socket);
        client_ = -1;
    }
    if (client_ >= 0) {
        close(client_);
    }
}

}  // namespace ifwatch::test
