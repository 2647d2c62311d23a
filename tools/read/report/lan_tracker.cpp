#include "read/report/lan_tracker.h"

#include <algorithm>
#include <string>
#include <vector>

#include "read/report/lan_text.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

using kind = lan_failure::kind;

constexpr int ARP_PACKET = 28;
constexpr int ARP_REQUEST = 1;
constexpr int ARP_REPLY = 2;

constexpr int IP_HEADER = 20;
constexpr int PROTOCOL_ICMP = 1;
constexpr int PROTOCOL_TCP = 6;
constexpr int PROTOCOL_UDP = 17;
constexpr int FRAGMENT_OFFSET = 0x1FFF;

constexpr int TCP_HEADER = 20;
constexpr int TCP_SYN = 0x02;
constexpr int TCP_RST = 0x04;
constexpr int TCP_ACK = 0x10;

constexpr int ICMP_HEADER = 8;
constexpr int ICMP_UNREACHABLE = 3;
constexpr int ICMP_TIME_EXCEEDED = 11;
constexpr int ICMP_FRAGMENTATION_NEEDED = 4;  // code
constexpr int ICMP_PORT_UNREACHABLE = 3;      // code

// Where traceroute sends to, and gets refused in the end.
constexpr int FIRST_TRACEROUTE_PORT = 33434;
constexpr int LAST_TRACEROUTE_PORT = 33534;

constexpr std::size_t MOST_ROWS = 10;
constexpr std::uint64_t MANY_TIMES = 3;
// A question that is younger than this at the end may still be answered.
constexpr std::uint32_t LONG_WAIT_MS = 3'000;
constexpr std::uint32_t SHORT_TIME_MS = 2'000;

void see(lan_tracker& tracker, place at) {
    if (!tracker.seen) {
        tracker.seen = true;
        tracker.first = at;
    }
}

/// A question that waits, or waits on.
lan_question& ask(remembered<host_pair, lan_question>& questions, const journal& about, place at,
                  const host_pair& hosts) {
    lan_question* question = questions.find(hosts);
    if (question == nullptr) {
        lan_question asked;
        asked.first = at;
        asked.lost = about.lost;
        asked.hosts = hosts;
        question = &questions.begin(hosts, *about.shared, asked);
    }
    question->last = at;
    ++question->times;
    return *question;
}

void reach(lan_tracker& tracker, std::uint32_t host, std::uint32_t source) {
    if (lan_asker* const asker = tracker.askers.find(host)) {
        asker->reached = asker->reached || (asker->source != 0 && asker->source != source);
        asker->source = source;
    }
}

void add_failure(lan_tracker& tracker, const journal& about, const lan_failure& failure) {
    const std::uint32_t what = static_cast<std::uint32_t>(failure.what) << 16 |
                               static_cast<std::uint32_t>(failure.icmp_type << 8 | failure.icmp_code);
    const host_pair key{failure.from, failure.to, what};
    if (lan_failure* const known = tracker.failures.find(key)) {
        known->first = std::min(known->first, failure.first);
        known->last = std::max(known->last, failure.last);
        known->port = known->port == failure.port ? failure.port : 0;
        known->times += failure.times;
    } else {
        tracker.failures.begin(key, *about.shared, failure);
    }
}

// --- TCP

constexpr std::uint32_t ports(int from, int to) {
    return static_cast<std::uint32_t>(from) << 16 | static_cast<std::uint32_t>(to);
}

void end_connection(lan_tracker& tracker, const journal& about, place at, const host_pair& asked, bool refused) {
    if (tracker.connections.find(asked) == nullptr) {
        return;
    }
    ++tracker.answered;
    tracker.connections.finish(asked);
    if (refused) {
        lan_failure failure;
        failure.first = at;
        failure.last = at;
        failure.what = kind::TCP_REFUSED;
        failure.from = asked.from;
        failure.to = asked.to;
        failure.port = static_cast<int>(asked.what & 0xFFFF);
        failure.times = 1;
        add_failure(tracker, about, failure);
    }
}

void take_tcp(lan_tracker& tracker, const journal& about, const frame& what, const host_pair& hosts) {
    const octets segment = what.data;
    if (segment.held() < TCP_HEADER - 6) {
        return;
    }
    const int flags = segment[13];
    const int from = segment.be16(0);
    const int to = segment.be16(2);
    if ((flags & (TCP_SYN | TCP_ACK | TCP_RST)) == TCP_SYN) {
        const host_pair connection{hosts.from, hosts.to, ports(from, to)};
        const lan_question& asked = ask(tracker.connections, about, what.at, connection);
        tracker.syns += asked.times == 1 ? 1 : 0;
    }
    // Whatever comes back is an answer, a SYN of the other side, too.
    end_connection(tracker, about, what.at, {hosts.to, hosts.from, ports(to, from)}, (flags & TCP_RST) != 0);
}

// --- ICMP

/// What a host is told about a datagram of its own.
void take_icmp(lan_tracker& tracker, const journal& about, const frame& what, std::uint32_t told_by) {
    const octets message = what.data;
    const octets about_datagram = message.skip(ICMP_HEADER);
    const int type = message[0];
    if ((type != ICMP_UNREACHABLE && type != ICMP_TIME_EXCEEDED) || about_datagram.held() < IP_HEADER) {
        return;
    }
    lan_failure failure;
    failure.first = what.at;
    failure.last = what.at;
    failure.from = about_datagram.be32(12);
    failure.to = about_datagram.be32(16);
    failure.told_by = told_by;
    failure.icmp_type = type;
    failure.icmp_code = message[1];
    failure.times = 1;
    const int protocol = about_datagram[9];
    const octets transport = about_datagram.skip((about_datagram[0] & 0x0F) * 4);
    if (protocol == PROTOCOL_TCP || protocol == PROTOCOL_UDP) {
        failure.port = transport.be16(2);
    }
    const bool traceroute = protocol == PROTOCOL_UDP && failure.port >= FIRST_TRACEROUTE_PORT &&
                            failure.port <= LAST_TRACEROUTE_PORT && type == ICMP_UNREACHABLE &&
                            failure.icmp_code == ICMP_PORT_UNREACHABLE;
    if (!traceroute) {
        add_failure(tracker, about, failure);
    }
    if (protocol == PROTOCOL_TCP) {
        end_connection(tracker, about, what.at, {failure.from, failure.to, ports(transport.be16(0), transport.be16(2))},
                       false);
    }
}

// --- Conclusions

/// Where nobody answers in the end. A host that was asked a moment ago may still answer, and the answer to a host
/// elsewhere passes by.
void conclude(lan_tracker& tracker, const journal& about, const lan_question& question, kind what) {
    const bool waits = elapsed(question.last, about.now) < LONG_WAIT_MS && question.times < MANY_TIMES;
    if (waits || question.lost != about.lost || !question.answer_would_show) {
        return;
    }
    lan_failure failure;
    failure.first = question.first;
    failure.last = question.last;
    failure.what = what;
    failure.from = question.hosts.from;
    failure.to = question.hosts.to;
    failure.port = static_cast<int>(question.hosts.what & 0xFFFF);
    failure.times = question.times;
    add_failure(tracker, about, failure);
}

/// A limit that is found out, as traceroute and the discovery of the path's MTU do, is no trouble, nor is what still
/// comes for a program that has just ended.
bool is_trouble(const lan_failure& failure) {
    if (failure.what == kind::ICMP) {
        const bool limit = failure.icmp_type == ICMP_TIME_EXCEEDED || failure.icmp_code == ICMP_FRAGMENTATION_NEEDED;
        const bool short_time = elapsed(failure.first, failure.last) < SHORT_TIME_MS;
        if (limit || (failure.icmp_code == ICMP_PORT_UNREACHABLE && short_time)) {
            return false;
        }
    }
    return failure.times >= MANY_TIMES;
}

/// Those that happened most, and of these those first that began first.
std::vector<const lan_failure*> most_failures(const lan_tracker& tracker) {
    std::vector<const lan_failure*> all = tracker.failures.in_order();
    std::ranges::stable_sort(all, std::ranges::greater(), &lan_failure::times);
    all.resize(std::min(all.size(), MOST_ROWS));
    return all;
}

void put_counts(text_sink& out, const lan_tracker& tracker) {
    put(out, count_text(tracker.datagrams, "IP datagram"));
    if (tracker.arp_requests + tracker.arp_replies > 0) {
        print_to<"; %s, %lu answered">(out, count_text(tracker.arp_requests, "ARP request"), tracker.arp_replies);
    }
    if (tracker.syns > 0) {
        print_to<"; %s asked for, %lu answered">(out, count_text(tracker.syns, "TCP connection"), tracker.answered);
    }
}

}  // namespace

void take_arp(lan_tracker& tracker, const journal& about, const frame& what) {
    see(tracker, what.at);
    const octets packet = what.data;
    const int operation = packet.be16(6);
    const std::uint32_t sender = packet.be32(14);
    const std::uint32_t target = packet.be32(24);
    if (packet.held() < ARP_PACKET || sender == 0 || sender == target) {
        return;  // a probe, or an announcement
    }
    if (operation == ARP_REPLY) {
        ++tracker.arp_replies;
        tracker.arps.finish({target, sender, 0});
        reach(tracker, target, sender);
    } else if (operation == ARP_REQUEST) {
        ++tracker.arp_requests;
        lan_question& question = ask(tracker.arps, about, what.at, {sender, target, 0});
        question.answer_would_show = question.answer_would_show || what.sent;
        if (tracker.askers.find(sender) == nullptr) {
            tracker.askers.begin(sender, *about.shared, {what.at, 0, false});
        }
    }
}

void take_ip(lan_tracker& tracker, const journal& about, const frame& what) {
    see(tracker, what.at);
    ++tracker.datagrams;
    const octets datagram = what.data;
    if (datagram.held() < IP_HEADER) {
        return;
    }
    const host_pair hosts{datagram.be32(12), datagram.be32(16), 0};
    tracker.arps.finish(hosts);  // who sends there has got its reply
    reach(tracker, hosts.to, hosts.from);
    if ((datagram.be16(6) & FRAGMENT_OFFSET) != 0) {
        return;
    }
    const frame carried = what.with(datagram.skip((datagram[0] & 0x0F) * 4));
    if (datagram[9] == PROTOCOL_TCP) {
        take_tcp(tracker, about, carried, hosts);
    } else if (datagram[9] == PROTOCOL_ICMP) {
        take_icmp(tracker, about, carried, hosts.from);
    }
}

void finish_lan(lan_tracker& tracker, const journal& about) {
    tracker.arps.for_each_lasting([&](lan_question& question) {
        const lan_asker* const asker = tracker.askers.find(question.hosts.from);
        question.answer_would_show = question.answer_would_show || (asker != nullptr && asker->reached);
        conclude(tracker, about, question, kind::NO_ARP_REPLY);
    });
    tracker.connections.for_each_lasting([&](lan_question& question) {
        question.answer_would_show = true;
        conclude(tracker, about, question, kind::NO_SYN_ANSWER);
    });
    for (const lan_failure* const failure : most_failures(tracker)) {
        if (is_trouble(*failure)) {
            text_buffer<trouble_list::MAX_TEXT> text;
            put_lan_failure(text, *failure);
            tell_trouble<"%s">(about, failure->first, text.text());
        }
    }
}

bool lan_was_seen(const lan_tracker& tracker) { return tracker.seen; }

void print_lan_section(const lan_tracker& tracker) {
    section rows;
    text_buffer<MAX_ROW> counts;
    put_counts(counts, tracker);
    print_row_text(rows, tracker.first, counts.text());
    for (const lan_failure* const failure : most_failures(tracker)) {
        text_buffer<MAX_ROW> text;
        put_lan_failure(text, *failure);
        print_row_text(rows, failure->first, text.text());
    }
    const std::uint64_t all = tracker.failures.size() + tracker.failures.forgotten();
    rows.left_out += all - std::min<std::uint64_t>(all, MOST_ROWS);
    end_section(rows);
}

}  // namespace ifwatch::reporting
