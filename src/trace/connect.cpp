#include "trace/connect.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "base/print.h"
#include "base/program_name.h"
#include "base/verbose.h"

namespace ifwatch {

namespace {

/// TRACE_PORT, in C notation, or the port of the settings.
std::optional<std::uint16_t> find_port(std::uint16_t port) {
    const char* const value = std::getenv("TRACE_PORT");
    if (value == nullptr) {
        return port;
    }
    char* end = nullptr;
    const long number = std::strtol(value, &end, 0);
    if (end == value || *end != '\0') {
        report<"Illegal TCP Port Setting %s!\n">(value);
        return std::nullopt;
    }
    return static_cast<std::uint16_t>(number);
}

const char* find_host(const char* host) {
    if (host != nullptr) {
        return host;
    }
    const char* const value = std::getenv("TRACE_HOST");
    if (value == nullptr || *value == '\0') {
        report<"Environment Variable '%s' not set!\n">("TRACE_HOST");
        return nullptr;
    }
    return value;
}

std::optional<sockaddr_in> find_daemon(const session_settings& settings) {
    const auto port = find_port(settings.port);
    const char* const host = port ? find_host(settings.host) : nullptr;
    if (host == nullptr) {
        return std::nullopt;
    }
    sockaddr_in daemon{};
    daemon.sin_family = AF_INET;
    daemon.sin_port = htons(*port);
    // Not getaddrinfo: it puts the address in front that it takes to be nearest, and the first is to be the resolver's.
    daemon.sin_addr = first_address(gethostbyname(host), host);
    if (daemon.sin_addr.s_addr == INADDR_ANY || daemon.sin_addr.s_addr == INADDR_NONE) {
        report<"Illegal Host Setting %s!\n">(host);
        return std::nullopt;
    }
    return daemon;
}

/// connect(2) that also survives an interruption by a signal: the attempt goes on in the kernel and is waited for.
int connect_socket(int socket_fd, const sockaddr_in& daemon) {
    // The socket calls take every address family through the one pointer type.
    if (connect(socket_fd, reinterpret_cast<const sockaddr*>(&daemon), sizeof daemon) == 0) {
        return 0;
    }
    if (errno != EINTR) {
        return -1;
    }
    pollfd waiting{socket_fd, POLLOUT, 0};
    while (poll(&waiting, 1, -1) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    socklen_t length = sizeof errno;
    return getsockopt(socket_fd, SOL_SOCKET, SO_ERROR, &errno, &length) == 0 && errno == 0 ? 0 : -1;
}

bool bind_to_any(int socket_fd) {
    sockaddr_in any{};
    any.sin_family = AF_INET;
    any.sin_addr.s_addr = htonl(INADDR_ANY);
    return bind(socket_fd, reinterpret_cast<const sockaddr*>(&any), sizeof any) == 0;
}

/// The messages of a set-up are short and follow each other: none is to wait until the one before is acknowledged.
/// Without this option it would only take longer.
void send_at_once(int socket_fd) {
    const int on = 1;
    setsockopt(socket_fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

/// The dotted address of a daemon, for the messages about it.
struct dotted_address {
    char text[INET_ADDRSTRLEN] = "";

    explicit dotted_address(in_addr address) { inet_ntop(AF_INET, &address, text, sizeof text); }
};

}  // namespace

in_addr first_address(const hostent* found, const char* text) {
    in_addr address{inet_addr(text)};
    if (found != nullptr && found->h_addrtype == AF_INET && found->h_addr_list[0] != nullptr) {
        std::memcpy(&address, found->h_addr_list[0], sizeof address);
    }
    return address;
}

int connect_trace(const session_settings& settings, int quiet_level) {
    const auto daemon = find_daemon(settings);
    if (!daemon) {
        return -1;
    }
    const int socket_fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket_fd < 0) {
        report<"ERROR socket (%s)\n">(std::strerror(errno));
        return -1;
    }
    const dotted_address address(daemon->sin_addr);
    const int port = ntohs(daemon->sin_port);
    const char* failed = nullptr;
    if (!bind_to_any(socket_fd)) {
        failed = "bind";
    } else {
        if (verbose_level > 1) {
            report<"try connect to %s:%d\n">(address.text, port);
        }
        failed = connect_socket(socket_fd, *daemon) != 0 ? "connect" : nullptr;
    }
    if (failed != nullptr) {
        report<"ERROR %s (%s)\n">(failed, std::strerror(errno));
        close(socket_fd);
        return -1;
    }
    send_at_once(socket_fd);
    if (quiet_level <= verbose_level) {
        report<"%s: connected to %s:%d\n">(program_name(), address.text, port);
    }
    return socket_fd;
}

}  // namespace ifwatch
