#include "support/tcp_peer.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

#include "base/byte_order.h"
#include "trace/element.h"

namespace ifwatch::test {

namespace {

int connect_to_loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    const int client = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // The socket calls take every kind of address as a sockaddr.
    if (client < 0 || connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        throw std::runtime_error("cannot connect to port " + std::to_string(port));
    }
    return client;
}

std::vector<std::uint8_t> octets_from(std::initializer_list<int> values) {
    std::vector<std::uint8_t> result;
    for (const int value : values) {
        result.push_back(static_cast<std::uint8_t>(value));
    }
    return result;
}

void send_element_to(const tcp_peer& client, std::uint8_t type, const std::vector<std::uint8_t>& data) {
    std::vector<std::uint8_t> element(4);
    store_be32(element.data(), element_header(type, static_cast<std::uint32_t>(data.size())));
    element.insert(element.end(), data.begin(), data.end());
    client.send(element);
}

}  // namespace

void tcp_peer::send(std::initializer_list<int> octets) const { send(octets_from(octets)); }

void tcp_peer::send(std::span<const std::uint8_t> octets) const { write_all(socket_, octets); }

void tcp_peer::send_element(std::uint8_t type, std::initializer_list<int> data) const {
    send_element_to(*this, type, octets_from(data));
}

void tcp_peer::send_element(std::uint8_t type, std::string_view text) const {
    send_element_to(*this, type, {text.begin(), text.end()});
}

void tcp_peer::end_sending() const { shutdown(socket_, SHUT_WR); }

void tcp_peer::reset() const {
    sockaddr nobody{};
    nobody.sa_family = AF_UNSPEC;
    if (connect(socket_, &nobody, sizeof nobody) != 0) {
        throw std::runtime_error("cannot reset the connection");
    }
}

std::vector<std::uint8_t> tcp_peer::receive(std::size_t n) const {
    std::vector<std::uint8_t> result(n);
    std::size_t got = 0;
    while (got < n && read_n(socket_, &result[got], 1) == 1) {
        ++got;
    }
    result.resize(got);
    return result;
}

std::vector<std::uint8_t> tcp_peer::receive_all() const {
    std::vector<std::uint8_t> result;
    for (std::vector<std::uint8_t> more = receive(1); !more.empty(); more = receive(1)) {
        result.push_back(more.front());
    }
    return result;
}

bool tcp_peer::silent_for(int milliseconds) const {
    pollfd watched = {socket_, POLLIN, 0};
    return poll(&watched, 1, milliseconds) == 0;
}

tcp_client::tcp_client(int port) : tcp_peer(connect_to_loopback(port)) {}

tcp_client::~tcp_client() { close(socket()); }

}  // namespace ifwatch::test
