#include "read/report/pppoe_tracker.h"

namespace ifwatch::reporting {

void take_pppoe_discovery(pppoe_tracker& tracker, const journal& /*about*/, const frame& /*what*/) {
    tracker.seen = true;
}

void finish_pppoe(pppoe_tracker& /*tracker*/, const journal& /*about*/) {}

bool pppoe_was_seen(const pppoe_tracker& tracker) { return tracker.seen; }

void print_pppoe_section(const pppoe_tracker& /*tracker*/) {}

}  // namespace ifwatch::reporting
