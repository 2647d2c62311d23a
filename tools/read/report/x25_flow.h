#pragma once

#include <cstdint>

#include "read/report/journal.h"

namespace ifwatch::reporting {

/// The data packets of one direction of a call, and whether they may go on (ITU-T X.25 clause 4.4).
struct x25_flow {
    bool known = false;  // what was acknowledged last
    int next = 0;
    int acknowledged = 0;
    int window = 2;  // where nothing else is told or seen
    bool more = false;
    std::uint64_t packets = 0;
    int in_order = 0;  // the last packets, each numbered behind the one before

    bool full = false;
    bool not_ready = false;  // RNR
    place stood_still;       // since when, while one of both holds
    std::uint64_t lost = 0;  // records that had been lost up to there
};

/// For how long a direction stood still, and why.
struct standstill {
    place first;
    std::uint32_t length_ms = 0;  // 0: never for long enough
    bool not_ready = false;
    int window = 0;
};

/// A data packet of this direction.
void take_x25_data(x25_flow& flow, const journal& about, place at, int ps, int mask);

/// An acknowledgement from the other side. Returns the standstill that it ends.
standstill take_x25_acknowledgement(x25_flow& flow, const journal& about, place at, int pr, int mask);

/// RR or RNR from the other side, behind its acknowledgement. Returns the standstill that it ends.
standstill take_x25_readiness(x25_flow& flow, const journal& about, place at, bool ready);

/// Both counters begin at 0 again. Returns the standstill that this ends.
standstill reset_x25_flow(x25_flow& flow, const journal& about, place at);

}  // namespace ifwatch::reporting
