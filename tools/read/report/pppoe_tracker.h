#pragma once

#include <cstdint>

#include "read/report/journal.h"

namespace ifwatch::reporting {

/// PPPoE discovery of one interface (RFC 2516).
struct pppoe_tracker {
    bool seen = false;
};

/// One packet of the discovery stage, from the Ethernet header of its frame on.
void take_pppoe_discovery(pppoe_tracker& tracker, const journal& about, const frame& what);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_pppoe(pppoe_tracker& tracker, const journal& about);

[[nodiscard]] bool pppoe_was_seen(const pppoe_tracker& tracker);
void print_pppoe_section(const pppoe_tracker& tracker);

}  // namespace ifwatch::reporting
