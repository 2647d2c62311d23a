#pragma once

#include <cstdint>
#include <string>

#include "sim/faults.h"

namespace ifwatch::sim {

/// The steps of a session in the order of version 3; --close-after ends the connection behind one of them.
enum class session_step { NONE, CONNECT, REQUEST, VERSION, CHALLENGE, LOGIN, ADDINFO, CHANTYPE, REPLY };

/// What a daemon of one version does with a client that asks for another.
enum class refusal { REPLY, CLOSE, SERVE };

/// How the daemon behaves towards its clients.
struct daemon_setup {
    std::string listen = "127.0.0.1";
    std::uint16_t port = 7000;  // 0: any free port
    std::string port_file;
    std::string password = "admin";
    int version = 0;  // the only version spoken; 0: all
    refusal on_other_version = refusal::REPLY;
    std::string error_text;  // sent instead of the reply
    session_step close_after = session_step::NONE;
    double pace = 0;             // times as fast as the time stamps tell; 0: full speed
    double rate = 0;             // records a second; 0: no limit
    std::uint64_t loops = 1;     // times the records are sent; 0: for ever
    std::uint64_t sessions = 0;  // trace sessions to serve; 0: any number
    std::uint64_t limit = 0;     // traces at a time; 0: any number
    std::uint64_t together = 0;  // traces that wait for each other before the first record
    fault_list faults;
    bool verbose = false;
};

}  // namespace ifwatch::sim
