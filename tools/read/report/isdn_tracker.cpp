#include "read/report/isdn_tracker.h"

namespace ifwatch::reporting {

void take_lapd(isdn_tracker& tracker, const journal& /*about*/, const frame& /*what*/) { tracker.seen = true; }

bool take_pabx(isdn_tracker& tracker, const journal& /*about*/, const frame& /*what*/) {
    tracker.seen = true;
    return true;
}

void finish_isdn(isdn_tracker& /*tracker*/, const journal& /*about*/) {}

bool isdn_was_seen(const isdn_tracker& tracker) { return tracker.seen; }

void print_isdn_section(const isdn_tracker& /*tracker*/) {}

}  // namespace ifwatch::reporting
