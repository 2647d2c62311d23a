#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cases/case_file.h"
#include "sim/peer.h"
#include "sim/setup.h"
#include "sim/trace_room.h"

namespace ifwatch::sim {

/// How a session went.
struct session_report {
    int version = 0;            // spoken with this client; 0: not known yet
    std::string result;         // one line, such as "trace of interface 1000 ended"
    bool traced = false;        // it came to sending records
    std::uint64_t records = 0;  // sent, whole ones
};

/// Serves one client of the trace protocol, from the trace request to the last record. The cases are sorted by
/// interface index and all have one. The socket is left open, our direction closed.
session_report serve_session(const peer& client, const daemon_setup& setup, const std::vector<cases::trace_case>& cases,
                             trace_room& room);

}  // namespace ifwatch::sim
