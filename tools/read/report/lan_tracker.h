#pragma once

#include <cstdint>

#include "read/report/journal.h"

namespace ifwatch::reporting {

/// ARP, TCP and ICMP by pair of hosts (RFC 826, RFC 9293, RFC 792).
struct lan_tracker {
    bool seen = false;
};

/// One ARP or RARP packet.
void take_arp(lan_tracker& tracker, const journal& about, const frame& what);

/// One IP datagram.
void take_ip(lan_tracker& tracker, const journal& about, const frame& what);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_lan(lan_tracker& tracker, const journal& about);

[[nodiscard]] bool lan_was_seen(const lan_tracker& tracker);
void print_lan_section(const lan_tracker& tracker);

}  // namespace ifwatch::reporting
