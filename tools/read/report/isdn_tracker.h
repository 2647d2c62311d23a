#pragma once

#include <cstdint>

#include "read/report/call_tracker.h"
#include "read/report/journal.h"
#include "read/report/lapd_tracker.h"

namespace ifwatch::reporting {

/// What a D-channel or the PABX carries: TEIs, data links, calls (ITU-T Q.921, Q.931; FTZ 1 TR 6).
struct isdn_tracker {
    lapd_tracker links;
    call_tracker calls;
    bool seen = false;
};

/// One LAPD frame. Returns whether it took down a link that was up.
bool take_lapd(isdn_tracker& tracker, const journal& about, const frame& what);

/// One PABX record, from its six octets of its own on. False when it is no message of a call.
bool take_pabx(isdn_tracker& tracker, const journal& about, const frame& what);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_isdn(isdn_tracker& tracker, const journal& about);

[[nodiscard]] bool isdn_was_seen(const isdn_tracker& tracker);
void print_isdn_section(const isdn_tracker& tracker, const journal& about);

}  // namespace ifwatch::reporting
