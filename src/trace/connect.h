#pragma once

#include <cstdint>

namespace ifwatch {

/// Where the trace daemon is and how this run logs in.
struct session_settings {
    const char* host = nullptr;      // nullptr: taken from TRACE_HOST
    std::uint16_t port = 7000;       // host order; TRACE_PORT wins over it
    const char* password = nullptr;  // --pwd; nullptr: none given
    bool list_mode = false;
};

/// Connects to the trace daemon over IPv4 and reports it at `verbose_level` >= `quiet_level`. Returns the socket, or
/// -1 after a message that names what failed.
int connect_trace(const session_settings& settings, int quiet_level);

}  // namespace ifwatch
