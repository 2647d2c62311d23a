#include "sim/trace_room.h"

#include <algorithm>

namespace ifwatch::sim {

namespace {

using clock = std::chrono::steady_clock;

constexpr auto GLANCE = std::chrono::milliseconds(1);

std::uint32_t earliest_of(const std::vector<cases::trace_case>& cases) {
    bool any = false;
    std::uint32_t earliest = 0;
    for (const cases::trace_case& each : cases) {
        for (const cases::case_record& record : each.records) {
            earliest = any ? std::min(earliest, record.timestamp_ms) : record.timestamp_ms;
            any = true;
        }
    }
    return earliest;
}

}  // namespace

trace_room::trace_room(const daemon_setup& setup, const std::vector<cases::trace_case>& cases)
    : setup_(setup), origin_ms_(earliest_of(cases)) {}

bool trace_room::begin(const peer& client) {
    if (++begun_ == setup_.together) {
        start_ = clock::now().time_since_epoch().count();
    }
    while (start_ == 0 && setup_.together != 0) {
        if (!client.wait_until(clock::now() + GLANCE)) {
            return false;
        }
    }
    return true;
}

}  // namespace ifwatch::sim
