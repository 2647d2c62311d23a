// Serves trace records to whoever connects, as a daemon of protocol version 1 does, at full speed:
//
//     trace_feeder [--pause RECORDS | --clients COUNT] RECORDS SOURCE
//
// The records of the source, repeated to the number asked for, go to each client in turn. The first line of the
// standard output is the port. After --pause RECORDS, and after the last, the feeder waits until the client's system
// has taken all that was sent, prints a line and goes on when it has read one. With --clients so many are served at a
// time, each by a process of its own, and get nothing before all of them are there. It runs until it is killed.

#include <linux/sockios.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <span>
#include <vector>

#include "base/byte_order.h"
#include "trace/element.h"
#include "traffic.h"

namespace {

using namespace ifwatch;

constexpr int REQUEST_LENGTH = 20;

int fail(const char* what) {
    std::perror(what);
    return 1;
}

/// A listening socket on a free port of the loopback interface, or -1.
int listen_on_loopback(std::uint16_t& port) {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (fd < 0 || bind(fd, generic, length) != 0 || listen(fd, SOMAXCONN) != 0 ||
        getsockname(fd, generic, &length) != 0) {
        return -1;
    }
    port = ntohs(address.sin_port);
    return fd;
}

bool say_and_wait(int client, unsigned long sent) {
    int unsent = 1;
    while (ioctl(client, SIOCOUTQ, &unsent) == 0 && unsent != 0) {
        poll(nullptr, 0, 1);
    }
    static_cast<void>(std::printf("%lu\n", sent));
    static_cast<void>(std::fflush(stdout));
    return std::getchar() == '\n';
}

/// Sends the next records of the block, `count` at most. Returns how many, or 0 when the client has gone.
unsigned long send_some(int client, bench::traffic& block, unsigned long sent, unsigned long count) {
    bench::number_records(block, static_cast<std::uint32_t>(sent + 1));
    count = std::min(count, static_cast<unsigned long>(block.starts.size()));
    const std::size_t length = count == block.starts.size() ? block.octets.size() : block.starts[count];
    return write_all(client, std::span(block.octets).first(length)) ? count : 0;
}

/// False for a client that has gone, or speaks another version.
bool acknowledge(int client, const bench::feeding& what) {
    std::uint8_t request[REQUEST_LENGTH];
    const auto channel_type = static_cast<std::uint8_t>(what.block.channel_type);
    return read_n(client, request, REQUEST_LENGTH) == REQUEST_LENGTH && load_be32(request) == 1 &&
           write_all(client, {&channel_type, 1});
}

void serve(int client, bench::feeding& what) {
    const unsigned long pause = what.number_of("--pause", 0);  // 0: none
    unsigned long sent = 0;
    while (sent < what.count) {
        const unsigned long until = sent < pause ? pause : what.count;
        const unsigned long count = send_some(client, what.block, sent, until - sent);
        if (count == 0) {
            return;
        }
        sent += count;
        const bool halts = pause != 0 && (sent == pause || sent == what.count);
        if (halts && !say_and_wait(client, sent)) {
            return;
        }
    }
}

/// As many clients as are served at a time, all of them acknowledged; fewer when the system refuses.
std::vector<int> gather(int listening, const bench::feeding& what) {
    std::vector<int> clients;
    while (clients.size() < what.number_of("--clients", 1)) {
        const int client = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0) {
            break;
        }
        if (acknowledge(client, what)) {
            clients.push_back(client);
        } else {
            close(client);
        }
    }
    return clients;
}

/// Each by a process of its own, the only one by this.
void serve_all(const std::vector<int>& clients, bench::feeding& what) {
    for (const int client : clients) {
        if (clients.size() == 1) {
            serve(client, what);
        } else if (fork() == 0) {
            serve(client, what);
            _exit(0);
        }
    }
    for (const int client : clients) {
        close(client);
    }
}

}  // namespace

int main(int argc, char** argv) {
    bench::feeding what;
    std::uint16_t port = 0;
    if (!bench::read_arguments({argv, static_cast<std::size_t>(argc)},
                               "trace_feeder [--pause RECORDS | --clients COUNT] RECORDS SOURCE", what)) {
        return 2;
    }
    const int listening = listen_on_loopback(port);
    if (listening < 0) {
        return fail("trace_feeder: listen");
    }
    static_cast<void>(std::printf("%d\n", port));
    static_cast<void>(std::fflush(stdout));
    static_cast<void>(std::signal(SIGCHLD, SIG_IGN));  // nobody asks how they ended
    for (;;) {
        const std::vector<int> clients = gather(listening, what);
        if (clients.size() < what.number_of("--clients", 1)) {
            return fail("trace_feeder: accept");
        }
        serve_all(clients, what);
    }
}
