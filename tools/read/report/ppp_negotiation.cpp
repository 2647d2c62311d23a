#include "read/report/ppp_negotiation.h"

#include <algorithm>
#include <bitset>

#include "base/names.h"
#include "ppp/ipcp.h"
#include "ppp/lcp.h"
#include "ppp/option_walk.h"
#include "ppp/protocol_names.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

constexpr int OPTION_HEADER = 2;
constexpr int OPTION_MAGIC_NUMBER = 5;

// The other side may just wake up; and two refusals are what a good end may need to find another way.
constexpr int MANY_UNANSWERED = 3;
constexpr int MANY_ALIKE = 3;
constexpr int MANY_REFUSALS = 5;  // Max-Failure of RFC 1661

/// Takes the next option off `options`. False at their end, or where one is longer than the rest.
bool take_option(octets& options, ppp_option& option) {
    const int length = options[1];
    if (options.within() < OPTION_HEADER || length < OPTION_HEADER || length > options.length) {
        return false;
    }
    option = {options[0], length, options.skip(OPTION_HEADER).cut(length - OPTION_HEADER), 0};
    options = options.skip(length);
    return true;
}

void keep_rejected(kept_octets<48>& kept, octets options) {
    ppp_option option;
    std::bitset<256> known;
    for (octets rest = kept.view(); take_option(rest, option);) {
        known.set(static_cast<std::size_t>(option.type));
    }
    for (octets rest = options, one = rest; take_option(rest, option); one = rest) {
        const auto type = static_cast<std::size_t>(option.type);
        if (!known[type] && option.length <= kept.room()) {
            known.set(type);
            kept.append(one.cut(option.length));
        }
    }
}

std::string option_text(const ppp_option& option, int protocol) {
    text_buffer<80> text;
    (protocol == PROTOCOL_LCP ? put_lcp_option : put_ipcp_option)(text, option);
    std::string shown(text.text());
    std::ranges::replace_if(
        shown, [](char one) { return !is_printable(static_cast<std::uint8_t>(one)); }, '?');
    shown.erase(shown.find_last_not_of("; ") + 1);
    const auto both_blank = [](char one, char next) { return one == ' ' && next == ' '; };
    shown.erase(std::unique(shown.begin(), shown.end(), both_blank), shown.end());
    return shown;
}

void take_request(negotiation& of, negotiation_end& asks, const frame& what, const control_packet& packet) {
    if (!of.began) {
        of.began = what.at;
    }
    if (asks.requests++ == 0) {
        asks.first = what.at;
    }
    if (asks.unanswered++ == 0) {
        asks.first_unanswered = what.at;
    }
    asks.last = what.at;
    asks.acked = false;
    asks.identifier = packet.identifier;
    asks.asked.assign(packet.data);
}

void take_refusal(negotiation_end& asked, const control_packet& packet) {
    kept_octets<24> refused;
    refused.assign(packet.data);
    const bool same = asked.refused_with == packet.code && asked.refused == refused;
    asked.alike = same ? asked.alike + 1 : 1;
    asked.refused = refused;
    asked.refused_with = packet.code;
    ++asked.refusals;
    if (packet.code == CONFIGURE_REJECT) {
        keep_rejected(asked.rejected, packet.data);
    }
}

bool agreed(const negotiation& of, const link_ends& ends) {
    constexpr int one_for_each_end = 2;
    return (of.ends[0].acked && of.ends[1].acked) || (!ends.both() && of.acks >= one_for_each_end);
}

std::string protocol_text(int protocol) { return std::string(ppp_protocol_name(protocol).view()); }

void tell_unanswered(const negotiation& of, const link_ends& ends, const journal& about, int protocol, int end) {
    const negotiation_end& asks = of.ends[static_cast<std::size_t>(end)];
    const std::string took = duration_text(elapsed(asks.first_unanswered, asks.last));
    const std::string name = protocol_text(protocol);
    if (ends.router == 1 - end) {
        tell_trouble<"the router does not answer %s Configure-Request, received %d times in %s">(
            about, asks.first_unanswered, name, asks.unanswered, took);
    } else if (of.ends[static_cast<std::size_t>(1 - end)].requests > 0) {
        tell_trouble<"%s asks, but does not answer %s Configure-Request, sent %d times in %s">(
            about, asks.first_unanswered, ends.name(1 - end), name, asks.unanswered, took);
    } else {
        tell_trouble<"no answer to %s Configure-Request, sent %d times in %s%s">(
            about, asks.first_unanswered, name, asks.unanswered, took,
            protocol == PROTOCOL_LCP ? ": nobody at the other end speaks PPP" : "");
    }
}

/// Which of the options of a request the options of a refusal are about.
std::string asked_text(const negotiation_end& asks, int protocol) {
    std::string text;
    ppp_option option;
    for (octets rest = asks.refused.view(); take_option(rest, option);) {
        const octets own = find_ppp_option(asks.asked.view(), option.type);
        if (own.data != nullptr) {
            text +=
                (text.empty() ? "" : ", ") + option_text({option.type, own.length + OPTION_HEADER, own, 0}, protocol);
        }
    }
    return text;
}

void tell_refused(const negotiation& of, const link_ends& ends, const journal& about, int protocol, int end) {
    const negotiation_end& asks = of.ends[static_cast<std::size_t>(end)];
    const char* const other = ends.name(1 - end);
    const std::string name = protocol_text(protocol);
    const std::string refused = options_text(asks.refused.view(), protocol);
    const std::string times = count_text(static_cast<std::uint64_t>(asks.refusals), "time");
    const std::string took = duration_text(elapsed(asks.first, asks.last));
    const char* const within = asks.refusals > 1 ? " in " : "";
    const std::string insists = asked_text(asks, protocol);
    if (asks.refused_with == CONFIGURE_REJECT || insists.empty()) {
        tell_trouble<"%s does not come up: refused %s%s%s, %s %s %s">(
            about, asks.first, name, times, within, asks.refusals > 1 ? took : "", other,
            asks.refused_with == CONFIGURE_REJECT ? "rejects" : "wants", refused);
    } else {
        tell_trouble<"%s does not come up: refused %s%s%s, %s wants %s, not %s">(
            about, asks.first, name, times, within, asks.refusals > 1 ? took : "", other, refused, insists);
    }
}

/// Of what one end asks for. Where the link was ended, one refusal is enough that it did not ask again behind.
bool tell_end_not_agreed(const negotiation& of, const link_ends& ends, const journal& about, int protocol, bool ended,
                         int end) {
    const negotiation_end& asks = of.ends[static_cast<std::size_t>(end)];
    if (asks.acked) {
        return false;
    }
    if (asks.unanswered >= MANY_UNANSWERED) {
        tell_unanswered(of, ends, about, protocol, end);
        return true;
    }
    const bool given_up = ended && asks.refusals > 0 && asks.unanswered == 0;
    if (given_up || asks.alike >= MANY_ALIKE || asks.refusals >= MANY_REFUSALS) {
        tell_refused(of, ends, about, protocol, end);
        return true;
    }
    return false;
}

bool is_looped(const negotiation& of) {
    const octets one = find_ppp_option(of.ends[0].asked.view(), OPTION_MAGIC_NUMBER);
    const octets other = find_ppp_option(of.ends[1].asked.view(), OPTION_MAGIC_NUMBER);
    return one.within() == 4 && other.within() == 4 && one.be32(0) == other.be32(0) && one.be32(0) != 0;
}

}  // namespace

const char* link_ends::name(int end) const {
    if (router == UNKNOWN) {
        return end == 0 ? "one side" : "the other side";
    }
    return end == router ? "the router" : "the peer";
}

octets find_ppp_option(octets options, int type) {
    ppp_option option;
    while (take_option(options, option)) {
        if (option.type == type) {
            return option.data;
        }
    }
    return {};
}

std::string options_text(octets options, int protocol) {
    std::string text;
    ppp_option option;
    while (take_option(options, option)) {
        text += (text.empty() ? "" : ", ") + option_text(option, protocol);
    }
    return text.empty() ? "its options" : text;
}

int asking_end(const negotiation& of, const link_ends& ends, int answering_end) {
    const bool other_asked = of.ends[static_cast<std::size_t>(1 - answering_end)].requests > 0;
    return other_asked || ends.both() ? 1 - answering_end : answering_end;
}

void take_configure(negotiation& of, const link_ends& ends, const frame& what, int end, const control_packet& packet) {
    if (packet.code == CONFIGURE_REQUEST) {
        take_request(of, of.ends[static_cast<std::size_t>(end)], what, packet);
        return;
    }
    negotiation_end& asked = of.ends[static_cast<std::size_t>(asking_end(of, ends, end))];
    if (ends.both() && asked.requests > 0 && packet.identifier != asked.identifier) {
        return;  // an answer that came too late
    }
    asked.unanswered = 0;
    if (packet.code != CONFIGURE_ACK) {
        take_refusal(asked, packet);
        return;
    }
    asked.acked = true;
    asked.asked.assign(packet.data);
    ++of.acks;
    if (!of.up && agreed(of, ends)) {
        of.up = what.at;
    }
}

bool tell_not_agreed(const negotiation& of, const link_ends& ends, const journal& about, int protocol, bool ended) {
    if (of.up || !of.began) {
        return false;
    }
    if (protocol == PROTOCOL_LCP && is_looped(of)) {
        tell_trouble<"the line is looped back: what is sent comes back from the other end">(about, *of.began);
        return true;
    }
    // The end that began first is looked at first.
    const bool second_was_first =
        of.ends[1].requests > 0 && (of.ends[0].requests == 0 || of.ends[1].first < of.ends[0].first);
    const int first = second_was_first ? 1 : 0;
    return tell_end_not_agreed(of, ends, about, protocol, ended, first) ||
           tell_end_not_agreed(of, ends, about, protocol, ended, 1 - first);
}

}  // namespace ifwatch::reporting
