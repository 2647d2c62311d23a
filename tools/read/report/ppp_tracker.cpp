#include "read/report/ppp_tracker.h"

namespace ifwatch::reporting {

void take_ppp_control(ppp_tracker& tracker, const journal& /*about*/, const frame& /*what*/, std::uint64_t /*link*/,
                      int /*protocol*/) {
    tracker.seen = true;
}

void take_ppp_data(ppp_tracker& tracker, const journal& /*about*/, const frame& /*what*/, std::uint64_t /*link*/,
                   int /*protocol*/) {
    tracker.seen = true;
}

void finish_ppp(ppp_tracker& /*tracker*/, const journal& /*about*/) {}

bool ppp_was_seen(const ppp_tracker& tracker) { return tracker.seen; }

void print_ppp_section(const ppp_tracker& /*tracker*/) {}

}  // namespace ifwatch::reporting
