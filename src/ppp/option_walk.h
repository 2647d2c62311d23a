#pragma once

#include <span>

#include "base/octets.h"

namespace ifwatch {

/// One option of a PPP control packet, RFC 1661 clause 6.
///
///     octet 0   type
///     octet 1   length, type and length included
///
/// `data` stands behind them. `passed` is how many octets of data the walk moves over before it reads the next
/// option: all of them, unless the printer says otherwise.
struct ppp_option {
    int type = 0;
    int length = 0;
    octets data;
    int passed = 0;
};

using option_printer = void (*)(ppp_option& option);

/// A row of a protocol's option table.
struct option_kind {
    int type;
    option_printer print;
};

/// The printer of the row with this type, or `otherwise`.
[[nodiscard]] option_printer find_option(std::span<const option_kind> kinds, int type, option_printer otherwise);

/// Prints the options of a control packet one after the other. A length below 2 or past the packet prints
/// "invalid length" and ends the walk; at the hard end of the frame it ends without a word.
void walk_options(octets options, option_printer print_option);

}  // namespace ifwatch
