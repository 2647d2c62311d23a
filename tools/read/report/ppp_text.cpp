#include "read/report/ppp_text.h"

#include <string>

#include "ppp/protocol_names.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

constexpr int OPTION_IP_ADDRESS = 3;
constexpr int OPTION_CALLBACK = 13;
constexpr int OPTION_PRIMARY_DNS = 129;
constexpr int OPTION_SECONDARY_DNS = 131;

std::string address_text(octets address) {
    text_buffer<16> text;
    print_to<"%d.%d.%d.%d">(text, address[0], address[1], address[2], address[3]);
    return std::string(text.text());
}

void put_rejected(text_sink& out, const negotiation& of, const link_ends& ends, int protocol) {
    for (const int end : {0, 1}) {
        const negotiation_end& asked = of.ends[static_cast<std::size_t>(end)];
        if (!asked.rejected.empty()) {
            print_to<"; %s options rejected by %s: %s">(out, ppp_protocol_name(protocol),
                                                        ends.both() ? ends.name(1 - end) : "the other side",
                                                        options_text(asked.rejected.view(), protocol));
        }
    }
}

void put_lcp(text_sink& out, const ppp_link& link) {
    if (link.lcp.up && link.lcp.began) {
        print_to<"LCP up after %s">(out, duration_text(elapsed(*link.lcp.began, *link.lcp.up)));
    } else if (link.began_before) {
        put(out, "up, began before");
    } else {
        const int requests = link.lcp.ends[0].requests + link.lcp.ends[1].requests;
        print_to<"LCP not up: %s">(out, count_text(static_cast<std::uint64_t>(requests), "Configure-Request"));
        if (const int refusals = link.lcp.ends[0].refusals + link.lcp.ends[1].refusals; refusals > 0) {
            print_to<", refused %s">(out, count_text(static_cast<std::uint64_t>(refusals), "time"));
        }
    }
    put_rejected(out, link.lcp, link.ends, PROTOCOL_LCP);
}

void put_callback(text_sink& out, const ppp_link& link) {
    for (const int end : {0, 1}) {
        const negotiation_end& asked = link.lcp.ends[static_cast<std::size_t>(end)];
        if (asked.acked && find_ppp_option(asked.asked.view(), OPTION_CALLBACK).data != nullptr) {
            print_to<"; %s wants to be called back">(out, link.ends.name(end));
        }
    }
    if (link.callback_refused) {
        put(out, "; no callback");
    } else if (!link.callback.empty()) {
        print_to<"; callback to %s">(out, foreign_text(link.callback.view()));
    }
}

/// The addresses that were agreed on, those of the router first.
void put_addresses(text_sink& out, const ppp_link& link) {
    const char* between = ": ";
    const int first = link.ends.router != link_ends::UNKNOWN ? link.ends.router : 0;
    for (const int end : {first, 1 - first}) {
        const negotiation_end& asked = link.ipcp.ends[static_cast<std::size_t>(end)];
        const octets own = find_ppp_option(asked.asked.view(), OPTION_IP_ADDRESS);
        if (!asked.acked || own.within() < 4) {
            continue;
        }
        print_to<"%s%s is %s">(out, between, link.ends.name(end), address_text(own));
        between = ", ";
        for (const int type : {OPTION_PRIMARY_DNS, OPTION_SECONDARY_DNS}) {
            if (const octets server = find_ppp_option(asked.asked.view(), type); server.within() >= 4) {
                print_to<", name server %s">(out, address_text(server));
            }
        }
    }
}

void put_ipcp(text_sink& out, const ppp_link& link) {
    const auto& ends = link.ipcp.ends;
    if (link.ipcp.up || ends[0].acked || ends[1].acked) {
        print_to<"; IPCP up%s">(out, link.ipcp.up ? "" : " on one side");
        put_addresses(out, link);
    } else if (link.ipcp.began) {
        put(out, "; IPCP not up");
    }
    put_rejected(out, link.ipcp, link.ends, PROTOCOL_IPCP);
}

void put_refused_protocols(text_sink& out, const ppp_link& link) {
    for (std::size_t i = 0; i < link.refused_protocols.size() && link.refused_protocols[i] != 0; ++i) {
        print_to<"; %s does not speak 0x%04x (%s)">(out, link.ends.name(link.refused_by[i]), link.refused_protocols[i],
                                                    ppp_protocol_name(link.refused_protocols[i]));
    }
}

void put_echoes(text_sink& out, const ppp_link& link) {
    const std::uint64_t requests = link.echoes[0].count + link.echoes[1].count;
    if (requests == 0) {
        return;
    }
    print_to<"; %s">(out, count_text(requests, "echo request"));
    if (const std::uint32_t open = link.echoes[0].unanswered + link.echoes[1].unanswered; open > 0) {
        print_to<", the last %u without reply">(out, open);
    }
}

void put_end(text_sink& out, const ppp_link& link) {
    if (!link.ended) {
        const bool is_up = link.lcp.up || link.began_before;
        put(out, is_up ? (link.replaced ? "; no end seen" : "; not over") : "");
        return;
    }
    const place since = link.lcp.up ? *link.lcp.up : link.first;
    print_to<"; ended after %s">(out, duration_text(elapsed(since, *link.ended)));
    if (link.by_discovery) {
        put(out, " with the PPPoE session");
    } else if (link.ended_by != link_ends::UNKNOWN && link.ends.router != link_ends::UNKNOWN) {
        print_to<" by %s">(out, link.ends.name(link.ended_by));
    }
    if (!link.last_words.empty()) {
        print_to<": %s">(out, quoted_text(link.last_words.view()));
    }
}

}  // namespace

void put_ppp_link(text_sink& out, const ppp_link& link) {
    if (const std::uint64_t session = link.link >> ppp_end::SESSION_SHIFT; session != 0) {
        print_to<"session %lu: ">(out, session);
    }
    put_lcp(out, link);
    put_callback(out, link);
    put_logins(out, link.logins, link.ends);
    put_ipcp(out, link);
    put_refused_protocols(out, link);
    put_echoes(out, link);
    put_end(out, link);
}

}  // namespace ifwatch::reporting
