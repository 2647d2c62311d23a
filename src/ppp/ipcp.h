#pragma once

#include "base/text_sink.h"
#include "ppp/control_packet.h"
#include "ppp/option_walk.h"

namespace ifwatch {

/// Prints one IPCP packet (RFC 1332, RFC 1877): its identifier and code, and its options, whatever the code is. An
/// option is printed as if all the octets it should have were there.
void dump_ipcp(const control_packet& packet);

/// Writes one option as dump_ipcp shows it.
void put_ipcp_option(text_sink& out, const ppp_option& option);

}  // namespace ifwatch
