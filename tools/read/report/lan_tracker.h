#pragma once

#include <cstdint>

#include "read/report/journal.h"
#include "read/report/remembered.h"

namespace ifwatch::reporting {

/// Two hosts, and what of them is told apart.
struct host_pair {
    std::uint32_t from = 0;  // IPv4 addresses
    std::uint32_t to = 0;
    std::uint32_t what = 0;  // of a TCP connection its ports, of a failure its kind and code

    [[nodiscard]] constexpr bool operator==(const host_pair&) const = default;
};

/// A question of one host to another, until it is answered: an ARP request, or a SYN.
struct lan_question {
    place first;
    place last;
    std::uint64_t lost = 0;  // records that had been lost up to the first
    host_pair hosts;
    std::uint32_t times = 0;
    bool answer_would_show = false;  // it would pass this interface
};

/// A host that asks for others by ARP, and who sent anything to it alone. Where two did, the replies to it pass here:
/// what passes on a switched LAN has one end where it is captured.
struct lan_asker {
    place first;
    std::uint32_t source = 0;
    bool reached = false;  // by another source, too
};

/// What went wrong between two hosts, once or more often.
struct lan_failure {
    enum class kind : std::uint8_t { NO_ARP_REPLY, NO_SYN_ANSWER, TCP_REFUSED, ICMP };

    place first;
    place last;
    kind what = kind::ICMP;
    std::uint32_t from = 0;
    std::uint32_t to = 0;
    std::uint32_t told_by = 0;  // by ICMP: the host that it came from
    int port = 0;               // that was asked for; 0: none, or several
    int icmp_type = 0;
    int icmp_code = 0;
    std::uint64_t times = 0;
};

/// ARP, TCP and ICMP by pair of hosts (RFC 826, RFC 9293, RFC 792).
struct lan_tracker {
    remembered<host_pair, lan_question> arps;
    remembered<host_pair, lan_question> connections;
    remembered<std::uint32_t, lan_asker> askers;
    remembered<host_pair, lan_failure> failures;
    place first;
    std::uint64_t datagrams = 0;
    std::uint64_t arp_requests = 0;
    std::uint64_t arp_replies = 0;
    std::uint64_t syns = 0;  // connections that were asked for
    std::uint64_t answered = 0;
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
