#pragma once

#include "read/report/eft_request.h"
#include "read/report/journal.h"
#include "read/report/remembered.h"

namespace ifwatch::reporting {

/// File transfers (ETS 300 075, ETS 300 079).
struct eft_tracker {
    bool seen = false;
    remembered<int, eft_request> requests;  // one at a time of each side
};

/// The user data of one X.25 data packet.
void take_eft(eft_tracker& tracker, const journal& about, const frame& what);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_eft(eft_tracker& tracker, const journal& about);

[[nodiscard]] bool eft_was_seen(const eft_tracker& tracker);
void print_eft_section(const eft_tracker& tracker, const journal& about);

}  // namespace ifwatch::reporting
