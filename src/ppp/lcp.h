#pragma once

#include "base/text_sink.h"
#include "ppp/control_packet.h"
#include "ppp/option_walk.h"

namespace ifwatch {

/// Prints one LCP packet (RFC 1661, RFC 1570, RFC 1990): its identifier and code, and the options of codes up to
/// Code-Reject. An option is printed as if all the octets it should have were there.
void dump_lcp(const control_packet& packet);

/// Writes one option as dump_lcp shows it, with the semicolon behind it.
void put_lcp_option(text_sink& out, const ppp_option& option);

}  // namespace ifwatch
