#pragma once

#include <array>
#include <cstdint>

#include "read/report/fax_session.h"
#include "read/report/journal.h"
#include "read/report/remembered.h"

namespace ifwatch::reporting {

/// Fax sessions of a router's fax service (ITU-T T.30).
struct fax_tracker {
    bool seen = false;
    std::array<std::uint32_t, 2> framing{};  // of what is sent, and of what is received
    remembered<int, fax_session> sessions;   // one at a time
};

/// One record of the fax service. `flags` are those of the record.
void take_fax(fax_tracker& tracker, const journal& about, const frame& what, std::uint32_t flags);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_fax(fax_tracker& tracker, const journal& about);

[[nodiscard]] bool fax_was_seen(const fax_tracker& tracker);
void print_fax_section(const fax_tracker& tracker, const journal& about);

}  // namespace ifwatch::reporting
