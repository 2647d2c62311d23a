#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "read/report/journal.h"
#include "read/report/kept_octets.h"
#include "read/report/remembered.h"

namespace ifwatch::reporting {

/// Packets of one kind that wait for an answer.
struct unanswered_packets {
    place first;
    place last;
    int count = 0;
};

/// An access concentrator that has offered itself.
struct pppoe_offer {
    std::uint64_t station = 0;
    kept_octets<41> name;
};

/// The way of one host to a PPPoE session, from its PADI to the PADT.
struct pppoe_search {
    place first;
    std::uint64_t lost = 0;  // records that had been lost up to its first packet
    std::uint64_t host = 0;
    bool began_before = false;
    unanswered_packets initiations;   // PADI
    unanswered_packets requests;      // PADR
    int tries = 0;                    // PADI, answered or not
    std::vector<pppoe_offer> offers;  // the first few
    std::uint64_t concentrator = 0;   // that a session was asked of
    std::optional<place> confirmed;
    int session = 0;
    int refused_with = 0;   // tag
    bool replaced = false;  // the host searched anew before it was ended
    std::optional<place> ended;
    bool ended_by_host = false;
    int error = 0;  // tag of the PADT
    kept_octets<41> reason;
};

/// PPPoE discovery of one interface (RFC 2516).
struct pppoe_tracker {
    remembered<std::uint64_t, pppoe_search> searches;  // by the station of the host
    bool seen = false;
};

/// One packet of the discovery stage, from the Ethernet header of its frame on.
void take_pppoe_discovery(pppoe_tracker& tracker, const journal& about, const frame& what);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_pppoe(pppoe_tracker& tracker, const journal& about);

[[nodiscard]] bool pppoe_was_seen(const pppoe_tracker& tracker);
void print_pppoe_section(const pppoe_tracker& tracker);

}  // namespace ifwatch::reporting
