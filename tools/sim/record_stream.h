#pragma once

#include <cstdint>
#include <optional>

#include "cases/case_file.h"
#include "sim/filter.h"
#include "sim/peer.h"
#include "sim/setup.h"

namespace ifwatch::sim {

/// Where the clock of the time stamps stands.
struct clock_setting {
    peer::time_point when;
    std::uint32_t time_ms = 0;
};

/// The records of a case that one client gets.
struct record_selection {
    const cases::trace_case& source;
    frame_filter filter;
    std::optional<int> vpi;  // of ATM records
    std::optional<int> vci;
    std::int32_t capture_length = -1;         // octets of each frame; negative: all
    std::optional<clock_setting> start = {};  // nothing: now it stands where the first record is
};

/// Whether the client gets this record: the filter holds for LAN and tunnel frames, VPI and VCI for ATM records other
/// than events of the line. Records of other interfaces always pass.
[[nodiscard]] bool selects(const record_selection& selection, const cases::case_record& record);

/// Sends the selected records at the pace of the setup and with the fault, until they have been sent as often as
/// wanted, the client has gone or the daemon is to end. Returns how many went out whole.
std::uint64_t send_records(const peer& client, const daemon_setup& setup, const fault& trouble,
                           const record_selection& selection);

}  // namespace ifwatch::sim
