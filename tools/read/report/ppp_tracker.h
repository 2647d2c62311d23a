#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "read/report/journal.h"
#include "read/report/kept_octets.h"
#include "read/report/ppp_login.h"
#include "read/report/ppp_negotiation.h"
#include "read/report/remembered.h"

namespace ifwatch::reporting {

/// Which of the PPP links of an interface a packet is on, and which of its two ends it comes from. `link` is 0 where an
/// interface has but one; a PPPoE session has its number in the highest 16 bits.
struct ppp_end {
    static constexpr int SESSION_SHIFT = 48;

    std::uint64_t link = 0;
    int end = 0;
};

/// LCP Echo-Requests of one end.
struct echo_requests {
    std::uint64_t count = 0;
    std::uint64_t lost = 0;  // records that had been lost at the first of those without reply
    std::uint32_t unanswered = 0;
    place first;  // of those without reply
    place last;
};

/// One PPP link, from its first Configure-Request to its end.
struct ppp_link {
    place first;
    std::uint64_t lost = 0;  // records that had been lost up to its first packet
    std::uint64_t link = 0;
    bool began_before = false;
    bool carried = false;  // anything but control packets
    link_ends ends;
    negotiation lcp;
    negotiation ipcp;
    ppp_logins logins;
    std::array<echo_requests, 2> echoes{};
    std::array<std::uint16_t, 3> refused_protocols{};  // by Protocol-Reject; 0: none
    std::array<std::int8_t, 3> refused_by{};
    bool callback_refused = false;  // by CBCP: none is wanted
    kept_octets<32> callback;       // the number
    std::optional<place> ended;
    int ended_by = link_ends::UNKNOWN;
    bool replaced = false;      // another link began before this one was ended
    bool by_discovery = false;  // PPPoE ended it
    kept_octets<41> last_words;
};

/// The control protocols of every PPP link of one interface (RFC 1661, RFC 1332, RFC 1334, RFC 1994).
struct ppp_tracker {
    remembered<std::uint64_t, ppp_link> links;
    std::uint64_t count = 0;
    place first;
};

/// One packet of a PPP control or authentication protocol (0x8000 and above), from its code on.
void take_ppp_control(ppp_tracker& tracker, const journal& about, const frame& what, ppp_end from, int protocol);

/// A packet that the link has carried, of a protocol below 0x8000.
void take_ppp_data(ppp_tracker& tracker, const journal& about, const frame& what, ppp_end from, int protocol);

/// The PPPoE session that the link is on was ended.
void take_ppp_session_end(ppp_tracker& tracker, const journal& about, const frame& what, std::uint64_t link_key);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_ppp(ppp_tracker& tracker, const journal& about);

[[nodiscard]] bool ppp_was_seen(const ppp_tracker& tracker);
void print_ppp_section(const ppp_tracker& tracker);

}  // namespace ifwatch::reporting
