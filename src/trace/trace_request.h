#pragma once

#include "trace/trace_target.h"

namespace ifwatch {

/// Sends the request that opens a session, and tells so at the second verbose level. False when it could not be sent
/// (errno set).
bool send_trace_request(int socket_fd, const trace_target& target);

}  // namespace ifwatch
