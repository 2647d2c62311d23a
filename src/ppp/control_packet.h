#pragma once

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

/// A packet of a PPP control protocol, RFC 1661 clause 5:
///
///     octet 0      code
///     octet 1      identifier
///     octets 2-3   length, these four octets included
///
/// `data` stands behind them, cut down to the declared length where that many octets were there.
struct control_packet {
    int code = 0;
    int identifier = 0;
    octets data;
};

/// The name of a code that LCP, IPCP and CCP share; a code above `highest` is "Unknown".
[[nodiscard]] table_text control_code_name(int code, int highest);

}  // namespace ifwatch
