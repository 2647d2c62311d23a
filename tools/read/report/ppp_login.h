#pragma once

#include <array>
#include <cstdint>

#include "base/text_sink.h"
#include "ppp/control_packet.h"
#include "read/report/journal.h"
#include "read/report/kept_octets.h"
#include "read/report/ppp_negotiation.h"

namespace ifwatch::reporting {

inline constexpr int PROTOCOL_PAP = 0xC023;
inline constexpr int PROTOCOL_CHAP = 0xC223;

/// How one end of a link logs in at the other: PAP (RFC 1334) or CHAP (RFC 1994).
struct ppp_login {
    enum class stage : std::uint8_t { NONE, CHALLENGED, ANSWERED, ACCEPTED, REFUSED };

    place first;
    place last;  // what waits for an answer
    std::uint64_t lost = 0;
    stage reached = stage::NONE;
    bool accepted = false;  // the last time that there was a result
    int protocol = 0;
    int tries = 0;  // challenges, or logins, that wait for an answer
    // One octet more than a page shows of them: it tells that they go on.
    kept_octets<41> name;
    kept_octets<41> message;
    kept_octets<40> password;  // until its answer, which may repeat it; never on a page
};

/// The logins of a link, each under the end that logs in.
using ppp_logins = std::array<ppp_login, 2>;

/// One packet of PAP or CHAP. `end` is the end that it came from.
void take_login(ppp_logins& logins, const link_ends& ends, const journal& about, const frame& what, int end,
                int protocol, const control_packet& packet);

/// Tells of logins that nobody answered. False: there was none.
bool tell_unanswered_logins(const ppp_logins& logins, const link_ends& ends, const journal& about);

/// Writes how the logins ended: "; the peer logged in as 'branch7' (PAP)".
void put_logins(text_sink& out, const ppp_logins& logins, const link_ends& ends);

[[nodiscard]] bool was_refused(const ppp_logins& logins);

}  // namespace ifwatch::reporting
