#include "read/report/fax_tracker.h"

namespace ifwatch::reporting {

void take_fax(fax_tracker& tracker, const journal& /*about*/, const frame& /*what*/, std::uint32_t /*flags*/) {
    tracker.seen = true;
}

void finish_fax(fax_tracker& /*tracker*/, const journal& /*about*/) {}

bool fax_was_seen(const fax_tracker& tracker) { return tracker.seen; }

void print_fax_section(const fax_tracker& /*tracker*/) {}

}  // namespace ifwatch::reporting
