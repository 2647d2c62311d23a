#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "client/secret.h"
#include "extcap/options.h"
#include "trace/addinfo.h"
#include "trace/connect.h"

namespace ifwatch::extcap {

// Sessions with the router whose reports do not reach the error stream: there the analyser takes every word for an
// error.

/// Why something failed, for one line, and the exit status that goes with it.
struct failure {
    int status = 1;
    std::string text;
};

/// What came of a session's set-up.
enum class set_up : std::uint8_t {
    OPEN,
    UNREACHABLE,  // no connection, or one that the router closed
    REFUSED,
};

struct opened_session {
    set_up result = set_up::UNREACHABLE;
    int socket_fd = -1;  // of an open one
    std::int16_t channel_type = 0;
    std::string reason{};                    // why there is none
    std::vector<listed_interface> listed{};  // of a session that asked for the list
};

/// Logs in to the router of the options as often as it is asked to.
class router_access {
public:
    explicit router_access(const plugin_options& options) : options_(options) {}

    /// Checks the capture filter of a capture and finds the password. Needed before anything below. From here on
    /// reports are kept.
    bool prepare(failure& why);

    /// Asks the router for its interfaces.
    opened_session list();

    /// Opens a trace of an interface, with the filter, the line and the capture length of the options.
    opened_session trace(std::int32_t index);

    /// No session is opened any more.
    void forget_password();

private:
    opened_session open(std::int32_t index, addinfo_buffer addinfo, std::vector<listed_interface>* listed);

    const plugin_options& options_;
    secret password_;
    addinfo_buffer filters_;
};

/// What was reported since the last call, as one line without what only tells progress.
std::string take_reports();

}  // namespace ifwatch::extcap
