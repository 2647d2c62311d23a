#include "read/report/ppp_tracker.h"

#include <algorithm>
#include <string>
#include <vector>

#include "ppp/protocol_names.h"
#include "read/report/page.h"
#include "read/report/ppp_text.h"

namespace ifwatch::reporting {

namespace {

constexpr int UNKNOWN_PROTOCOL = 0;
constexpr int PROTOCOL_IP = 0x0021;
constexpr int PROTOCOL_CBCP = 0xC029;
constexpr int CONTROL_HEADER = 4;

// Codes of LCP beside those of a negotiation.
constexpr int TERMINATE_REQUEST = 5;
constexpr int TERMINATE_ACK = 6;
constexpr int PROTOCOL_REJECT = 8;
constexpr int ECHO_REQUEST = 9;
constexpr int ECHO_REPLY = 10;

constexpr int CBCP_ACK = 3;
constexpr int CBCP_NO_CALLBACK = 1;
constexpr int CBCP_NUMBER = 4;  // where it stands in an option

// Whoever asks again after so long has given up before.
constexpr std::uint32_t PAUSE_MS = 30'000;
constexpr std::uint32_t MANY_ECHOES = 3;
constexpr std::uint32_t LONG_SILENCE_MS = 2'000;

// --- Conclusions

void tell_echoes(const ppp_link& link, const journal& about, int end) {
    const echo_requests& sent = link.echoes[static_cast<std::size_t>(end)];
    if (sent.unanswered < MANY_ECHOES || sent.lost != about.lost || elapsed(sent.first, sent.last) < LONG_SILENCE_MS) {
        return;
    }
    const std::string took = duration_text(elapsed(sent.first, sent.last));
    if (link.ends.router == 1 - end) {
        tell_trouble<"the router does not answer LCP Echo-Request, received %u times in %s">(about, sent.first,
                                                                                             sent.unanswered, took);
    } else {
        tell_trouble<"no answer to LCP Echo-Request, sent %u times in %s: the link is dead">(about, sent.first,
                                                                                             sent.unanswered, took);
    }
}

bool has_callback(const ppp_link& link) {
    constexpr int option_callback = 13;
    return std::ranges::any_of(link.lcp.ends, [](const negotiation_end& end) {
        return end.acked && find_ppp_option(end.asked.view(), option_callback).data != nullptr;
    });
}

/// A link that was ended before it carried anything, though nobody was refused: one that is called back apart.
void tell_ended_early(const ppp_link& link, const journal& about) {
    const bool of_use = link.carried || link.ipcp.up || link.began_before || has_callback(link);
    if (of_use || !link.lcp.up || !link.ended || link.by_discovery || was_refused(link.logins)) {
        return;
    }
    const char* const who = link.ended_by != link_ends::UNKNOWN ? link.ends.name(link.ended_by) : "one side";
    const std::string after = duration_text(elapsed(*link.lcp.up, *link.ended));
    if (link.last_words.empty()) {
        tell_trouble<"%s ended the link %s after LCP came up, before it carried anything">(about, *link.ended, who,
                                                                                           after);
    } else {
        tell_trouble<"%s ended the link %s after LCP came up, before it carried anything: %s">(
            about, *link.ended, who, after, quoted_text(link.last_words.view()));
    }
}

void conclude_link(ppp_link& link, const journal& about) {
    if (link.link >> ppp_end::SESSION_SHIFT == 0 && about.has_sent) {
        link.ends.router = 1;
    }
    tell_echoes(link, about, 0);
    tell_echoes(link, about, 1);
    if (link.lost != about.lost) {
        return;
    }
    const bool ended = link.ended.has_value();
    const bool not_agreed = (!link.began_before && tell_not_agreed(link.lcp, link.ends, about, PROTOCOL_LCP, ended)) ||
                            tell_unanswered_logins(link.logins, link.ends, about) ||
                            tell_not_agreed(link.ipcp, link.ends, about, PROTOCOL_IPCP, ended && !link.carried);
    if (!not_agreed) {
        tell_ended_early(link, about);
    }
}

// --- The links

ppp_link& begin_link(ppp_tracker& tracker, const journal& about, const frame& what, std::uint64_t key,
                     bool began_before) {
    if (ppp_link* const before = tracker.links.find(key); before != nullptr && !before->ended) {
        before->replaced = true;
        conclude_link(*before, about);
    }
    ppp_link link;
    link.first = what.at;
    link.lost = about.lost;
    link.link = key;
    link.began_before = began_before;
    if (tracker.count++ == 0) {
        tracker.first = what.at;
    }
    return tracker.links.begin(key, *about.shared, link);
}

void end_link(ppp_link& link, const journal& about, const frame& what, int by) {
    if (!link.ended) {
        link.ended = what.at;
        link.ended_by = by;
        conclude_link(link, about);
    }
}

/// Whether a Configure-Request of LCP begins a link anew.
bool begins_anew(const ppp_link& link, const frame& what, int end, const control_packet& packet) {
    if (link.ended) {
        return true;
    }
    const negotiation_end& own = link.lcp.ends[static_cast<std::size_t>(end)];
    if (link.lcp.up) {
        return packet.identifier != own.identifier || elapsed(own.last, what.at) >= PAUSE_MS;
    }
    const bool asked = link.lcp.ends[0].requests + link.lcp.ends[1].requests > 0;
    const place last = std::max(link.lcp.ends[0].last, link.lcp.ends[1].last);
    return link.began_before || (asked && elapsed(last, what.at) >= PAUSE_MS);
}

bool knows_ppp_protocol(int protocol) {
    return ppp_protocol_name(protocol).view() != ppp_protocol_name(UNKNOWN_PROTOCOL).view();
}

void know_end(ppp_link& link, const frame& what, int end) {
    link.ends.spoke[static_cast<std::size_t>(end)] = true;
    if (what.sent) {
        link.ends.router = end;
    }
}

/// The link of a packet that only a link has that was begun; nullptr when what is left of it comes behind its end, or
/// when nothing is known of such a packet.
ppp_link* link_of(ppp_tracker& tracker, const journal& about, const frame& what, const ppp_end& from, int protocol) {
    ppp_link* link = tracker.links.find(from.link);
    if (link == nullptr) {
        if (tracker.links.ended_lately(from.link) || !knows_ppp_protocol(protocol)) {
            return nullptr;
        }
        link = &begin_link(tracker, about, what, from.link, true);
    }
    know_end(*link, what, from.end);
    return link;
}

// --- LCP

void take_echo_request(echo_requests& own, const journal& about, place at) {
    ++own.count;
    if (own.unanswered++ == 0) {
        own.first = at;
        own.lost = about.lost;
    }
    own.last = at;
}

void take_echo_reply(ppp_link& link, const journal& about, int end) {
    const bool other_asked = link.echoes[static_cast<std::size_t>(1 - end)].count > 0 || link.ends.both();
    const int asking = other_asked ? 1 - end : end;
    tell_echoes(link, about, asking);
    link.echoes[static_cast<std::size_t>(asking)].unanswered = 0;
}

void take_protocol_reject(ppp_link& link, const journal& about, place at, int end, octets data) {
    const int refused = data.be16(0);
    if (refused == PROTOCOL_IPCP || refused == PROTOCOL_IP) {
        tell_trouble<"%s does not take %s (Protocol-Reject): no IP over this link">(about, at, link.ends.name(end),
                                                                                    ppp_protocol_name(refused));
    }
    const auto* const known = std::ranges::find(link.refused_protocols, refused);
    auto* const room = std::ranges::find(link.refused_protocols, 0);
    if (known == link.refused_protocols.end() && room != link.refused_protocols.end()) {
        link.refused_by[static_cast<std::size_t>(room - link.refused_protocols.begin())] =
            static_cast<std::int8_t>(end);
        *room = static_cast<std::uint16_t>(refused);
    }
}

void take_lcp(ppp_tracker& tracker, const journal& about, const frame& what, const ppp_end& from,
              const control_packet& packet) {
    if (packet.code == CONFIGURE_REQUEST) {
        ppp_link* link = tracker.links.find(from.link);
        if (link == nullptr || begins_anew(*link, what, from.end, packet)) {
            link = &begin_link(tracker, about, what, from.link, false);
        }
        know_end(*link, what, from.end);
        take_configure(link->lcp, link->ends, what, from.end, packet);
        return;
    }
    ppp_link* const link = link_of(tracker, about, what, from, PROTOCOL_LCP);
    if (link == nullptr) {
        return;
    }
    switch (packet.code) {
        case CONFIGURE_ACK:
        case CONFIGURE_NAK:
        case CONFIGURE_REJECT:
            take_configure(link->lcp, link->ends, what, from.end, packet);
            break;
        case TERMINATE_REQUEST:
            if (!link->ended) {
                link->last_words.assign(packet.data);
            }
            end_link(*link, about, what, from.end);
            break;
        case TERMINATE_ACK:
            end_link(*link, about, what, link_ends::UNKNOWN);
            tracker.links.finish(from.link);
            break;
        case PROTOCOL_REJECT:
            take_protocol_reject(*link, about, what.at, from.end, packet.data);
            break;
        case ECHO_REQUEST:
            take_echo_request(link->echoes[static_cast<std::size_t>(from.end)], about, what.at);
            break;
        case ECHO_REPLY:
            take_echo_reply(*link, about, from.end);
            break;
        default:
            break;
    }
}

// --- What comes behind LCP

/// Of the packet that ends the talk about calling back, RFC draft "PPP Callback Control Protocol".
void take_callback(ppp_link& link, const control_packet& packet) {
    if (packet.code != CBCP_ACK) {
        return;
    }
    link.callback_refused = packet.data[0] == CBCP_NO_CALLBACK;
    const std::string_view number = packet.data.text(CBCP_NUMBER, packet.data[1] - CBCP_NUMBER);
    link.callback.assign(packet.data.skip(CBCP_NUMBER).cut(static_cast<int>(number.size())));
}

/// The packet behind its header; one that is damaged has the code 0, which none has.
control_packet control_packet_of(octets data) {
    const int length = data.be16(2);
    if (length < CONTROL_HEADER || length > data.length) {
        return {0, 0, {}};
    }
    return {data[0], data[1], data.cut(length).skip(CONTROL_HEADER)};
}

}  // namespace

void take_ppp_control(ppp_tracker& tracker, const journal& about, const frame& what, ppp_end from, int protocol) {
    const control_packet packet = control_packet_of(what.data);
    if (packet.code == 0) {
        return;
    }
    if (protocol == PROTOCOL_LCP) {
        take_lcp(tracker, about, what, from, packet);
        return;
    }
    ppp_link* const link = link_of(tracker, about, what, from, protocol);
    if (link == nullptr) {
        return;
    }
    if (protocol == PROTOCOL_PAP || protocol == PROTOCOL_CHAP) {
        take_login(link->logins, link->ends, about, what, from.end, protocol, packet);
    } else if (protocol == PROTOCOL_CBCP) {
        take_callback(*link, packet);
    } else if (protocol == PROTOCOL_IPCP && packet.code <= CONFIGURE_REJECT) {
        take_configure(link->ipcp, link->ends, what, from.end, packet);
    }
}

void take_ppp_data(ppp_tracker& tracker, const journal& about, const frame& what, ppp_end from, int protocol) {
    if (ppp_link* const link = link_of(tracker, about, what, from, protocol)) {
        link->carried = true;
    }
}

void take_ppp_session_end(ppp_tracker& tracker, const journal& about, const frame& what, std::uint64_t link_key) {
    ppp_link* const link = tracker.links.find(link_key);
    if (link == nullptr) {
        return;
    }
    link->by_discovery = !link->ended;
    end_link(*link, about, what, link_ends::UNKNOWN);
    tracker.links.finish(link_key);
}

void finish_ppp(ppp_tracker& tracker, const journal& about) {
    tracker.links.for_each_lasting([&](ppp_link& link) {
        if (!link.ended) {
            conclude_link(link, about);
        }
    });
}

bool ppp_was_seen(const ppp_tracker& tracker) { return tracker.count > 0; }

void print_ppp_section(const ppp_tracker& tracker) {
    section rows;
    if (tracker.count > section::MOST_ROWS) {
        print_row<"%s">(rows, tracker.first, count_text(tracker.count, "link"));
    }
    print_remembered(tracker.links, put_ppp_link, rows);
}

}  // namespace ifwatch::reporting
