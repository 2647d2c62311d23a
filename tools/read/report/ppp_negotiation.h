#pragma once

#include <array>
#include <optional>
#include <string>

#include "ppp/control_packet.h"
#include "read/report/journal.h"
#include "read/report/kept_octets.h"

namespace ifwatch::reporting {

inline constexpr int PROTOCOL_IPCP = 0x8021;
inline constexpr int PROTOCOL_LCP = 0xC021;

// Codes of the protocols that negotiate, RFC 1661 clause 5.
inline constexpr int CONFIGURE_REQUEST = 1;
inline constexpr int CONFIGURE_ACK = 2;
inline constexpr int CONFIGURE_NAK = 3;
inline constexpr int CONFIGURE_REJECT = 4;

/// The two ends of a PPP link, as far as they are known: which is the router's, and whether both were told apart.
struct link_ends {
    static constexpr int UNKNOWN = -1;

    int router = UNKNOWN;
    std::array<bool, 2> spoke{};

    /// "the router", "the peer"; where nobody knows, "one side" and "the other side".
    [[nodiscard]] const char* name(int end) const;
    [[nodiscard]] bool both() const { return spoke[0] && spoke[1]; }
};

/// What one end asks for, from its first Configure-Request to the Configure-Ack of the other.
struct negotiation_end {
    place first;  // Configure-Request
    place last;
    place first_unanswered;
    int requests = 0;
    int unanswered = 0;  // the last ones
    int refusals = 0;
    int alike = 0;  // of them, the last ones, which said the same
    int refused_with = 0;
    int identifier = 0;
    bool acked = false;
    kept_octets<48> asked;     // options of the last request
    kept_octets<24> refused;   // options of the last refusal
    kept_octets<48> rejected;  // every option that was rejected, each once
};

/// The negotiation of LCP or of a network control protocol, which ends with an Ack for either end.
struct negotiation {
    std::array<negotiation_end, 2> ends;
    std::optional<place> began;
    std::optional<place> up;
    int acks = 0;
};

/// One packet of the four Configure codes. `end` is the end that it came from.
void take_configure(negotiation& of, const link_ends& ends, const frame& what, int end, const control_packet& packet);

/// The end that an answer is for: the other one, but where directions are unknown.
[[nodiscard]] int asking_end(const negotiation& of, const link_ends& ends, int answering_end);

/// How to tell that a negotiation has come to nothing. False when there is nothing to tell: it has succeeded, or has
/// neither been tried long enough nor was given up as the link was ended.
bool tell_not_agreed(const negotiation& of, const link_ends& ends, const journal& about, int protocol, bool ended);

/// The first option of this type, from its data on; an empty view: there is none.
[[nodiscard]] octets find_ppp_option(octets options, int type);

/// Options as the decoder shows them, one behind the other: "MRU 1492, Authentication Protocol PAP".
[[nodiscard]] std::string options_text(octets options, int protocol);

}  // namespace ifwatch::reporting
