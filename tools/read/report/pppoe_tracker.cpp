#include "read/report/pppoe_tracker.h"

#include <algorithm>
#include <string>

#include "lan/ethertype.h"
#include "lan/pppoe.h"
#include "read/report/page.h"
#include "read/report/station.h"

namespace ifwatch::reporting {

namespace {

constexpr int ETHERNET_HEADER = 14;
constexpr int PPPOE_HEADER = 6;
constexpr int TAG_HEADER = 4;

constexpr int PADO = 0x07;
constexpr int PADI = 0x09;
constexpr int PADR = 0x19;
constexpr int PADS = 0x65;
constexpr int PADT = 0xA7;

constexpr int TAG_AC_NAME = 0x0102;
constexpr int FIRST_ERROR_TAG = 0x0201;
constexpr int LAST_ERROR_TAG = 0x0203;

// One packet may be lost; whoever asks twice and then rests has found nobody.
constexpr int MANY_TRIES = 3;
constexpr int SOME_TRIES = 2;
constexpr std::size_t MOST_OFFERS = 3;
constexpr std::uint32_t LONG_WAIT_MS = 10'000;
constexpr std::uint32_t PAUSE_MS = 30'000;

/// A discovery packet: its tags, and the stations.
struct discovery_packet {
    int code = 0;
    int session = 0;
    std::uint64_t to = 0;
    std::uint64_t from = 0;
    octets tags;
};

discovery_packet read_discovery(octets ethernet) {
    const octets packet = ethernet.skip(ETHERNET_HEADER);
    return {packet[1], packet.be16(2), station_at(ethernet), station_at(ethernet.skip(6)),
            packet.skip(PPPOE_HEADER).cut(packet.be16(4))};
}

/// Takes the next tag off `tags`. False at their end, or where one is longer than the rest.
bool take_tag(octets& tags, int& type, octets& value) {
    const int length = tags.be16(2);
    if (tags.within() < TAG_HEADER || length > tags.length - TAG_HEADER) {
        return false;
    }
    type = tags.be16(0);
    value = tags.skip(TAG_HEADER).cut(length);
    tags = tags.skip(TAG_HEADER + length);
    return true;
}

/// The tag of an error and its text; 0: there is none.
int error_of(octets tags, octets& text) {
    int type = 0;
    while (take_tag(tags, type, text)) {
        if (type >= FIRST_ERROR_TAG && type <= LAST_ERROR_TAG) {
            return type;
        }
    }
    return 0;
}

octets name_of(octets tags) {
    int type = 0;
    for (octets value; take_tag(tags, type, value);) {
        if (type == TAG_AC_NAME) {
            return value;
        }
    }
    return {};
}

void count(unanswered_packets& packets, place at) {
    if (packets.count++ == 0) {
        packets.first = at;
    }
    packets.last = at;
}

// --- Words

/// The concentrator that a session was asked of: its name, or else its station.
std::string concentrator_text(const pppoe_search& search) {
    const auto asked = std::ranges::find(search.offers, search.concentrator, &pppoe_offer::station);
    return asked != search.offers.end() && !asked->name.empty() ? quoted_text(asked->name.view())
                                                                : station_text(search.concentrator);
}

/// "Generic-Error 'line failed'".
std::string error_text(int tag, const pppoe_search& search) {
    std::string text(pppoe_tag_name(tag).view());
    if (!search.reason.empty()) {
        text.append(" ").append(quoted_text(search.reason.view()));
    }
    return text;
}

bool given_up(const unanswered_packets& packets, const journal& about) {
    return packets.count >= MANY_TRIES ||
           (packets.count >= SOME_TRIES && elapsed(packets.last, about.now) >= LONG_WAIT_MS);
}

void conclude_search(const pppoe_search& search, const journal& about) {
    if (search.lost != about.lost || search.confirmed || search.refused_with != 0) {
        return;
    }
    if (given_up(search.requests, about)) {
        tell_trouble<"the access concentrator %s gives no session: no answer to PADR, sent %d times in %s">(
            about, search.requests.first, concentrator_text(search), search.requests.count,
            duration_text(elapsed(search.requests.first, search.requests.last)));
    } else if (given_up(search.initiations, about)) {
        tell_trouble<"no answer to PADI, sent %d times in %s: no access concentrator hears it">(
            about, search.initiations.first, search.initiations.count,
            duration_text(elapsed(search.initiations.first, search.initiations.last)));
    }
}

// --- The packets

pppoe_search& begin_search(pppoe_tracker& tracker, const journal& about, const frame& what, std::uint64_t host,
                           bool began_before) {
    pppoe_search search;
    search.first = what.at;
    search.lost = about.lost;
    search.host = host;
    search.began_before = began_before;
    return tracker.searches.begin(host, *about.shared, search);
}

pppoe_search& search_of(pppoe_tracker& tracker, const journal& about, const frame& what, std::uint64_t host) {
    pppoe_search* const search = tracker.searches.find(host);
    return search != nullptr ? *search : begin_search(tracker, about, what, host, true);
}

void take_initiation(pppoe_tracker& tracker, const journal& about, const frame& what, const discovery_packet& packet) {
    pppoe_search* search = tracker.searches.find(packet.from);
    const bool rested = search != nullptr && elapsed(search->initiations.last, what.at) >= PAUSE_MS;
    if (search != nullptr && (rested || search->confirmed || search->refused_with != 0)) {
        conclude_search(*search, about);
        search->replaced = true;
        search = nullptr;
    }
    if (search == nullptr) {
        search = &begin_search(tracker, about, what, packet.from, false);
    }
    count(search->initiations, what.at);
    ++search->tries;
}

void take_offer(pppoe_search& search, const discovery_packet& packet) {
    search.initiations.count = 0;
    const bool known = std::ranges::find(search.offers, packet.from, &pppoe_offer::station) != search.offers.end();
    if (!known && search.offers.size() < MOST_OFFERS) {
        search.offers.push_back({packet.from, {}});
        search.offers.back().name.assign(name_of(packet.tags));
    }
}

void take_confirmation(pppoe_search& search, const journal& about, const frame& what, const discovery_packet& packet) {
    search.requests.count = 0;
    search.concentrator = packet.from;
    octets text;
    const int error = error_of(packet.tags, text);
    if (error == 0 && packet.session != 0) {
        search.confirmed = search.confirmed ? search.confirmed : what.at;
        search.session = packet.session;
        return;
    }
    search.refused_with = error != 0 ? error : LAST_ERROR_TAG;
    search.reason.assign(error != 0 ? text : octets{});
    if (about.troubles->wants_words()) {
        tell_trouble<"the access concentrator %s refuses a session (%s)">(about, what.at, concentrator_text(search),
                                                                          error_text(search.refused_with, search));
    }
}

void end_session(pppoe_tracker& tracker, const journal& about, const frame& what, pppoe_search& search,
                 const discovery_packet& packet) {
    octets text;
    search.ended = what.at;
    search.ended_by_host = packet.from == search.host;
    search.error = error_of(packet.tags, text);
    search.reason.assign(search.error != 0 ? text : octets{});
    if (search.error != 0 && !search.ended_by_host) {
        tell_trouble<"the access concentrator ended the session (%s)">(about, what.at,
                                                                       error_text(search.error, search));
    }
    tracker.searches.finish(search.host);
}

void take_termination(pppoe_tracker& tracker, const journal& about, const frame& what, const discovery_packet& packet) {
    for (const std::uint64_t host : {packet.from, packet.to}) {
        pppoe_search* const search = tracker.searches.find(host);
        if (search != nullptr && search->session == packet.session) {
            end_session(tracker, about, what, *search, packet);
            return;
        }
    }
    if (tracker.searches.ended_lately(packet.from) || tracker.searches.ended_lately(packet.to)) {
        return;  // either end may send one, the second for the first
    }
    pppoe_search search;
    search.first = what.at;
    search.began_before = true;
    search.session = packet.session;
    search.ended = what.at;
    tracker.searches.begin(packet.from, *about.shared, search);
    tracker.searches.finish(packet.from);
}

// --- Rows

void put_offers(text_sink& out, const pppoe_search& search) {
    if (search.began_before) {
        put(out, "began before");
        return;
    }
    if (search.offers.empty()) {
        print_to<"no offer to %s">(out, count_text(static_cast<std::uint64_t>(search.tries), "PADI"));
        return;
    }
    put(out, search.offers.size() == 1 ? "offer of " : "offers of ");
    const char* between = "";
    for (const pppoe_offer& offer : search.offers) {
        print_to<"%s%s">(out, between,
                         offer.name.empty() ? station_text(offer.station) : quoted_text(offer.name.view()));
        between = ", ";
    }
}

void put_session(text_sink& out, const pppoe_search& search) {
    if (search.refused_with != 0) {
        print_to<", session refused (%s)">(out, error_text(search.refused_with, search));
    } else if (search.confirmed) {
        print_to<", session %d after %s">(out, search.session, duration_text(elapsed(search.first, *search.confirmed)));
    } else if (search.session != 0) {
        print_to<", session %d">(out, search.session);
    } else if (search.requests.count > 0) {
        put(out, ", no answer to PADR");
    }
    if (!search.ended) {
        const bool stands = search.session != 0;
        put(out, stands ? (search.replaced ? ", no end seen" : ", not over") : "");
        return;
    }
    put(out, ", ended");
    if (search.confirmed) {
        print_to<" after %s by the %s">(out, duration_text(elapsed(*search.confirmed, *search.ended)),
                                        search.ended_by_host ? "host" : "access concentrator");
    }
    if (search.error != 0) {
        print_to<" (%s)">(out, error_text(search.error, search));
    }
}

}  // namespace

void take_pppoe_discovery(pppoe_tracker& tracker, const journal& about, const frame& what) {
    if (what.data.be16(12) != ETHERTYPE_PPPOE_DISCOVERY) {
        return;
    }
    tracker.seen = true;
    const discovery_packet packet = read_discovery(what.data);
    switch (packet.code) {
        case PADI:
            take_initiation(tracker, about, what, packet);
            break;
        case PADO:
            take_offer(search_of(tracker, about, what, packet.to), packet);
            break;
        case PADR: {
            pppoe_search& search = search_of(tracker, about, what, packet.from);
            search.concentrator = packet.to;
            count(search.requests, what.at);
            break;
        }
        case PADS:
            take_confirmation(search_of(tracker, about, what, packet.to), about, what, packet);
            break;
        case PADT:
            take_termination(tracker, about, what, packet);
            break;
        default:
            break;
    }
}

void finish_pppoe(pppoe_tracker& tracker, const journal& about) {
    tracker.searches.for_each_lasting([&](const pppoe_search& search) { conclude_search(search, about); });
}

bool pppoe_was_seen(const pppoe_tracker& tracker) { return tracker.seen; }

void print_pppoe_section(const pppoe_tracker& tracker) {
    print_remembered(tracker.searches, [](text_sink& out, const pppoe_search& search) {
        if (search.host != 0) {
            print_to<"%s: ">(out, station_text(search.host));
        }
        put_offers(out, search);
        put_session(out, search);
    });
}

}  // namespace ifwatch::reporting
