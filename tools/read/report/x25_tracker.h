#pragma once

#include <cstdint>

#include "read/report/journal.h"

namespace ifwatch::reporting {

/// LAPB and X.75 links, and the X.25 calls above them (ITU-T X.25, X.75; X.31 in a D-channel).
struct x25_tracker {
    bool seen = false;
};

/// One LAPB frame. Returns the user data of an X.25 or T.70 data packet in it, of length 0 where there are none.
[[nodiscard]] octets take_lapb(x25_tracker& tracker, const journal& about, const frame& what);

/// One X.25 packet of the link with this number, as the TEI is one in a D-channel; take_lapb() uses -1.
/// Returns the user data as take_lapb() does.
octets take_x25(x25_tracker& tracker, const journal& about, const frame& what, int link);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_x25(x25_tracker& tracker, const journal& about);

[[nodiscard]] bool x25_was_seen(const x25_tracker& tracker);
void print_x25_section(const x25_tracker& tracker);

}  // namespace ifwatch::reporting
