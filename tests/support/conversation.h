#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/session_script.h"

namespace ifwatch::test {

/// The daemon's side of a whole session, octet by octet: what it waits for and what it then sends. The interface is a
/// LAN; one record of 14 octets follows.
struct conversation {
    struct part {
        std::size_t awaited;  // octets of the client
        std::vector<std::uint8_t> sent;
    };
    /// What the client tells when the connection ends behind so many octets of the daemon, or more.
    struct failure {
        std::size_t from;
        const char* type;
        const char* text;
        bool tries_again;  // with version 1
    };

    const char* option;  // that asks for this version
    std::vector<part> parts;
    std::vector<failure> failures;
    std::size_t session_octets;  // the session stands behind them
    std::size_t all_octets;

    /// Plays the daemon's side up to so many octets of its own, and takes all that the client sends until then.
    void play(const tcp_peer& client, std::size_t octets) const;

    /// The failure behind fewer octets than a session takes.
    [[nodiscard]] const failure& failure_behind(std::size_t octets) const;
};

/// One for each version of the protocol, 1 to 3.
[[nodiscard]] const std::vector<conversation>& conversations();

inline constexpr const char* CONVERSATION_TYPE = "6 (LAN)";
inline constexpr const char* CONVERSATION_RECORD = "000001.000 X DATA[0014]   \n\n";  // as shown with -t

}  // namespace ifwatch::test
