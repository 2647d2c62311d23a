#include "support/scripted_daemon.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

#include "trace/element.h"

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

std::vector<std::uint8_t> octets_from(std::initializer_list<int> values) {
    std::vector<std::uint8_t> result;
    for (const int value : values) {
        result.push_back(static_cast<std::uint8_t>(value));
    }
    return result;
}

void send_element_to(const scripted_peer& client, std::uint8_t type, const std::vector<std::uint8_t>& data) {
    std::vector<std::uint8_t> element(4);
    store_be32(element.data(), element_header(type, static_cast<std::uint32_t>(data.size())));
    element.insert(element.end(), data.begin(), data.end());
    client.send(element);
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

void scripted_peer::send(std::initializer_list<int> octets) const { send(octets_from(octets)); }

void scripted_peer::send(std::span<const std::uint8_t> octets) const { write_all(socket_, octets); }

void scripted_peer::send_element(std::uint8_t type, std::initializer_list<int> data) const {
    send_element_to(*this, type, octets_from(data));
}

void scripted_peer::send_element(std::uint8_t type, std::string_view text) const {
    send_element_to(*this, type, {text.begin(), text.end()});
}

std::vector<std::uint8_t> scripted_peer::receive(std::size_t n) const {
    std::vector<std::uint8_t> result(n);
    std::size_t got = 0;
    while (got < n && read_n(socket_, &result[got], 1) == 1) {
        ++got;
    }
    result.resize(got);
    return result;
}

std::vector<std::uint8_t> scripted_peer::receive_all() const {
    std::vector<std::uint8_t> result;
    for (std::vector<std::uint8_t> more = receive(1); !more.empty(); more = receive(1)) {
        result.push_back(more.front());
    }
    return result;
}

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
        scripted_peer client(socket);
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
