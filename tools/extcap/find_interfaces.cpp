#include "extcap/find_interfaces.h"

#include <poll.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include "extcap/retry_pause.h"
#include "extcap/session_setup.h"

namespace ifwatch::extcap {

namespace {

/// Waits until the descriptor is readable or so many milliseconds have passed; -1: no descriptor, no limit. False when
/// the capture is ended before.
bool wait_for(int fd, int timeout_ms, const capture_ends& ends) {
    pollfd watched[] = {{ends.fifo, 0, 0}, {ends.stop_fd, POLLIN, 0}, {fd, POLLIN, 0}};
    while (poll(watched, std::size(watched), timeout_ms) < 0 && errno == EINTR) {
    }
    return watched[0].revents == 0 && watched[1].revents == 0;
}

/// Asks the router for its list, as often as it takes with --reconnect. False when the capture is ended before.
bool list_patiently(const plugin_options& options, router_access& access, const capture_ends& ends,
                    const problem_teller& tell, opened_session& session) {
    retry_pause pause;
    bool told = false;
    while (true) {
        session_setup question;
        if (!question.start(access, std::nullopt)) {
            session.reason = std::string("no process for the question: ") + std::strerror(errno);
        } else if (wait_for(question.fd(), -1, ends)) {
            session = question.take();
        } else {
            return false;
        }
        if (session.result != set_up::UNREACHABLE || !options.reconnect) {
            return true;
        }
        if (!told) {
            tell("router " + options.host + ": " + session.reason + "; trying again");
            told = true;
        }
        if (!wait_for(-1, pause.next_s() * 1000, ends)) {
            return false;
        }
    }
}

}  // namespace

bool find_interfaces(const plugin_options& options, router_access& access, const capture_ends& ends,
                     const problem_teller& tell, std::vector<std::int32_t>& indexes, std::string& reason) {
    opened_session session;
    const bool asks = options.interfaces.needs_list();
    if (asks && !list_patiently(options, access, ends, tell, session)) {
        return false;
    }
    std::vector<std::string> unknown;
    indexes = resolve_choice(options.interfaces, session.listed, unknown);
    std::string words;
    for (const std::string& word : unknown) {
        words += (words.empty() ? "" : ",") + word;
    }
    const bool has_list = !asks || session.result == set_up::OPEN;
    reason = has_list ? "no interface " + words : "its list, for " + words + ": " + session.reason;
    if (!unknown.empty() && !indexes.empty()) {
        tell("router " + options.host + ": " + reason);
    }
    return !indexes.empty();
}

}  // namespace ifwatch::extcap
