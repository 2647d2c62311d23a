#include "sim/daemon.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <list>
#include <thread>

#include "base/print.h"
#include "command_line/text_parts.h"
#include "sim/peer.h"
#include "sim/session.h"
#include "sim/trace_room.h"

namespace ifwatch::sim {

namespace {

constexpr std::uint32_t DEFAULT_INTERFACE = 1000;
constexpr int TIDY_INTERVAL_MS = 500;

/// "lan.case:3", for a message.
std::string place(const cases::trace_case& served, int line) { return served.path + ":" + std::to_string(line); }

bool by_interface(const cases::trace_case& a, const cases::trace_case& b) {
    return *a.interface_index < *b.interface_index;
}

/// One client being served. The descriptor is closed when the thread has been joined, so that it cannot be reused
/// while the daemon may still shut it down.
struct running_session {
    int socket = -1;
    std::thread thread;
    std::atomic<bool> done = false;
};

void log_session(std::uint64_t number, const session_report& report) {
    std::string line = "client " + std::to_string(number) + ": ";
    if (report.version != 0) {
        line += "version " + std::to_string(report.version) + ", ";
    }
    line += report.result.empty() ? "gone" : report.result;
    if (report.traced) {
        line += ", " + std::to_string(report.records) + (report.records == 1 ? " record" : " records");
    }
    write_errors(line + "\n");
}

class client_server {
public:
    client_server(const daemon_setup& setup, const std::vector<cases::trace_case>& cases)
        : setup_(setup), cases_(cases) {}
    client_server(const client_server&) = delete;
    client_server& operator=(const client_server&) = delete;
    client_server(client_server&&) = delete;
    client_server& operator=(client_server&&) = delete;
    ~client_server() {
        close(wake_[0]);
        close(wake_[1]);
    }

    void run(int listener, int stop);

private:
    void start(int socket);
    void serve(running_session& session, std::uint64_t number);
    void tidy();
    void end_all();

    const daemon_setup& setup_;
    const std::vector<cases::trace_case>& cases_;
    int wake_[2] = {-1, -1};  // readable when the sessions are to end
    std::list<running_session> sessions_;
    std::uint64_t started_ = 0;
    std::atomic<std::uint64_t> traced_ = 0;
    trace_room room_{setup_, cases_};
};

void client_server::run(int listener, int stop) {
    if (pipe(wake_) != 0) {
        write_errors(std::string("ifwatch-sim: pipe: ") + std::strerror(errno) + "\n");
        return;
    }
    while (true) {
        pollfd watched[] = {{listener, POLLIN, 0}, {stop, POLLIN, 0}, {wake_[0], POLLIN, 0}};
        const int ready = poll(watched, 3, sessions_.empty() ? -1 : TIDY_INTERVAL_MS);
        tidy();
        if ((ready < 0 && errno != EINTR) || (ready > 0 && (watched[1].revents | watched[2].revents) != 0)) {
            break;
        }
        if (ready > 0 && watched[0].revents != 0) {
            start(accept(listener, nullptr, nullptr));
        }
    }
    end_all();
}

void client_server::start(int socket) {
    if (socket < 0) {
        return;
    }
    running_session& session = sessions_.emplace_back();
    session.socket = socket;
    session.thread = std::thread([this, &session, number = ++started_] { serve(session, number); });
}

void client_server::serve(running_session& session, std::uint64_t number) {
    const peer client(session.socket, wake_[0], fault_of(setup_.faults, {}).kind == fault_kind::DRIP);
    const session_report report = serve_session(client, setup_, cases_, room_);
    if (setup_.verbose) {
        log_session(number, report);
    }
    shutdown(session.socket, SHUT_RDWR);
    if (report.traced && ++traced_ == setup_.sessions) {
        [[maybe_unused]] const auto woken = write(wake_[1], "", 1);
    }
    session.done = true;
}

void client_server::tidy() {
    sessions_.remove_if([](running_session& session) {
        if (!session.done) {
            return false;
        }
        session.thread.join();
        close(session.socket);
        return true;
    });
}

void client_server::end_all() {
    [[maybe_unused]] const auto woken = write(wake_[1], "", 1);
    for (running_session& session : sessions_) {
        if (!session.done) {
            shutdown(session.socket, SHUT_RDWR);
        }
    }
    for (running_session& session : sessions_) {
        session.thread.join();
        close(session.socket);
    }
    sessions_.clear();
}

}  // namespace

bool assign_interfaces(std::vector<cases::trace_case>& cases, std::string& error) {
    if (cases.size() == 1 && !cases.front().interface_index) {
        cases.front().interface_index = DEFAULT_INTERFACE;
    }
    for (const cases::trace_case& served : cases) {
        if (!served.interface_index) {
            error = place(served, served.channel_line) + ": several cases need an interface line each";
            return false;
        }
    }
    std::stable_sort(cases.begin(), cases.end(), by_interface);
    const auto twice =
        std::adjacent_find(cases.begin(), cases.end(), [](const cases::trace_case& a, const cases::trace_case& b) {
            return *a.interface_index == *b.interface_index;
        });
    if (twice != cases.end()) {
        error = place(*std::next(twice), std::next(twice)->interface_line) + ": interface " +
                std::to_string(*twice->interface_index) + " is already that of " + twice->path;
    }
    return twice == cases.end();
}

int open_listener(const daemon_setup& setup, std::uint16_t& port, std::string& error) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(setup.port);
    if (inet_pton(AF_INET, setup.listen.c_str(), &address.sin_addr) != 1) {
        error = "--listen takes an IPv4 address, not " + in_quotes(setup.listen);
        return -1;
    }
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    socklen_t length = sizeof address;
    // The socket calls take every kind of address as a sockaddr.
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (listener < 0 || setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
        bind(listener, generic, length) != 0 || listen(listener, SOMAXCONN) != 0 ||
        getsockname(listener, generic, &length) != 0) {
        error = setup.listen + ":" + std::to_string(setup.port) + ": " + std::strerror(errno);
        if (listener >= 0) {
            close(listener);
        }
        return -1;
    }
    port = ntohs(address.sin_port);
    return listener;
}

void serve_clients(int listener, int stop, const daemon_setup& setup, const std::vector<cases::trace_case>& cases) {
    client_server(setup, cases).run(listener, stop);
}

}  // namespace ifwatch::sim
