#pragma once

#include <cstdint>
#include <span>

#include "trace/connect.h"
#include "trace/trace_target.h"

namespace ifwatch {

struct display_context;

/// Opens a session with the trace daemon: connects, sends the trace request, and with a version above 1 the add-info
/// elements (above 2 after the login), then reads the daemon's reply. Versions below 1 go the way of 2, above 3 the
/// way of 3. On success returns 0, with the socket in `socket_out` and the channel type and its default flags in
/// `context`. On failure returns -1, or the version above 0 with which the caller is to try once more; the messages
/// have been printed and the socket is closed.
int open_session(int version, int& socket_out, const session_settings& settings, const trace_target& target,
                 std::span<const std::uint8_t> addinfo, display_context& context);

/// The same on a socket that is connected already; it is closed when the set-up fails.
int set_up_session(int socket_fd, int version, int& socket_out, const session_settings& settings,
                   const trace_target& target, std::span<const std::uint8_t> addinfo, display_context& context);

}  // namespace ifwatch
