#pragma once

#include <netinet/in.h>

#include <cstdint>
#include <vector>

struct hostent;

namespace ifwatch {

/// An interface of the router, as its list has it.
struct listed_interface {
    std::uint32_t index = 0;
    std::int16_t type = 0;
};

/// Where the trace daemon is and how this run logs in.
struct session_settings {
    const char* host = nullptr;      // nullptr: taken from TRACE_HOST
    std::uint16_t port = 7000;       // host order; TRACE_PORT wins over it
    const char* password = nullptr;  // --pwd; nullptr: none given
    bool list_mode = false;
    std::vector<listed_interface>* listed = nullptr;  // takes the interface list; nullptr: it is printed
};

/// The first IPv4 address of what the resolver has found for `text`, in its own order. Without one (`found` may be
/// nullptr) the text is taken for a dotted address; INADDR_NONE when it is none.
[[nodiscard]] in_addr first_address(const hostent* found, const char* text);

/// Connects to the trace daemon over IPv4 and reports it at `verbose_level` >= `quiet_level`. Returns the socket, or
/// -1 after a message that names what failed.
int connect_trace(const session_settings& settings, int quiet_level);

}  // namespace ifwatch
