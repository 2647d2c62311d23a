#pragma once

#include <cstdint>

#include "read/report/journal.h"

namespace ifwatch::reporting {

/// The control protocols of every PPP link of one interface (RFC 1661, RFC 1332, RFC 1334, RFC 1994).
struct ppp_tracker {
    bool seen = false;
};

/// One packet of a PPP control or authentication protocol (0x8000 and above), from its code on. `link` tells the links
/// of an interface apart: 0 where it has but one.
void take_ppp_control(ppp_tracker& tracker, const journal& about, const frame& what, std::uint64_t link, int protocol);

/// A packet that the link has carried, of a protocol below 0x8000.
void take_ppp_data(ppp_tracker& tracker, const journal& about, const frame& what, std::uint64_t link, int protocol);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_ppp(ppp_tracker& tracker, const journal& about);

[[nodiscard]] bool ppp_was_seen(const ppp_tracker& tracker);
void print_ppp_section(const ppp_tracker& tracker);

}  // namespace ifwatch::reporting
