#include "read/report/link_tracker.h"

#include <string>

#include "isdn/call_reference.h"
#include "isdn/lapd.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

using kind = tei_event::kind;

constexpr int SAPI_MANAGEMENT = 63;
constexpr int GROUP_TEI = 127;

// Control octets without their P/F bit.
constexpr int REJ = 0x09;
constexpr int UI = 0x03;
constexpr int DM = 0x0F;
constexpr int DISC = 0x43;
constexpr int UA = 0x63;
constexpr int SABME = 0x6F;
constexpr int FRMR = 0x87;

// Of TEI management.
constexpr int IDENTITY_REQUEST = 1;
constexpr int IDENTITY_ASSIGNED = 2;
constexpr int IDENTITY_DENIED = 3;
constexpr int IDENTITY_REMOVE = 6;

// A repetition now and then is in order: the other side may just wake up.
constexpr int MANY_TRIES = 3;
constexpr std::uint64_t MANY_REJECTS = 10;
// Whoever begins again after so long has given up before.
constexpr std::uint32_t PAUSE_MS = 10'000;

std::string tei_text(const data_link& link) {
    text_buffer<32> text;
    print_to<"TEI %d">(text, link.tei);
    if (link.sapi != 0) {
        print_to<", SAPI %d">(text, link.sapi);
    }
    return std::string(text.text());
}

std::string times_text(int times) { return count_text(static_cast<std::uint64_t>(times), "time"); }

// --- TEI management

void add_tei_event(link_tracker& tracker, tei_event event) {
    tracker.tei_waits = false;
    if (tracker.teis.size() >= link_tracker::MOST_TEI_EVENTS) {
        ++tracker.more_teis;
        return;
    }
    tracker.tei_waits = event.what == kind::REQUESTED;
    tracker.teis.push_back(event);
}

void tell_no_tei(const tei_event& request, const journal& about) {
    if (request.tries >= MANY_TRIES && request.lost == about.lost) {
        tell_trouble<"no answer to the request for a TEI, sent %d times in %s: nothing on layer 2">(
            about, request.first, request.tries, duration_text(elapsed(request.first, request.last_try)));
    }
}

void take_request(link_tracker& tracker, const journal& about, place at) {
    if (tracker.tei_waits && elapsed(tracker.teis.back().last_try, at) >= PAUSE_MS) {
        tell_no_tei(tracker.teis.back(), about);
        tracker.tei_waits = false;
    }
    if (tracker.tei_waits) {
        tei_event& waiting = tracker.teis.back();
        ++waiting.tries;
        waiting.last_try = at;
        return;
    }
    add_tei_event(tracker, {at, kind::REQUESTED, 0, 1, at, about.lost});
}

/// An answer to the request that waits, or one whose request was not seen.
void take_answer(link_tracker& tracker, const journal& about, place at, kind what, int tei) {
    if (!tracker.tei_waits) {
        add_tei_event(tracker, {at, what, tei, 0, at, about.lost});
    } else {
        tei_event& request = tracker.teis.back();
        tell_no_tei(request, about);
        request.what = what;
        request.tei = tei;
        request.last_try = at;
        tracker.tei_waits = false;
    }
    if (what == kind::DENIED) {
        tell_trouble<"the exchange refuses a TEI: too many terminals on the line?">(about, at);
    }
}

void take_management(link_tracker& tracker, const journal& about, const frame& what, octets message) {
    const int indicator = message[3] >> 1;
    switch (message[2]) {
        case IDENTITY_REQUEST:
            take_request(tracker, about, what.at);
            break;
        case IDENTITY_ASSIGNED:
            take_answer(tracker, about, what.at, kind::ASSIGNED, indicator);
            break;
        case IDENTITY_DENIED:
            take_answer(tracker, about, what.at, kind::DENIED, indicator);
            break;
        case IDENTITY_REMOVE:
            add_tei_event(tracker, {what.at, kind::REMOVED, indicator, 0, what.at, about.lost});
            break;
        default:
            break;
    }
}

// --- Data links

data_link& begin_link(link_tracker& tracker, const journal& about, const frame& what, int key) {
    data_link link;
    link.first = what.at;
    link.lost = about.lost;
    link.sapi = lapd_sapi(what.data);
    link.tei = lapd_tei(what.data);
    link.sent = what.sent;
    link.last_try = what.at;
    return tracker.links.begin(key, *about.shared, link);
}

/// The link of a frame that only a link that is up can have.
data_link& link_that_is_up(link_tracker& tracker, const journal& about, const frame& what, int key) {
    if (data_link* const link = tracker.links.find(key)) {
        if (!link->up) {
            link->up = what.at;
        }
        return *link;
    }
    data_link& link = begin_link(tracker, about, what, key);
    link.began_before = true;
    link.up = what.at;
    return link;
}

void tell_tries(const data_link& link, const journal& about) {
    const bool asked = link.sent || !about.has_sent;
    const std::string took = duration_text(elapsed(link.first, link.last_try));
    if (link.up) {
        tell_trouble<"SABME %s %d times in %s before it was answered">(about, link.first, asked ? "sent" : "received",
                                                                       link.tries, took);
    } else if (asked) {
        tell_trouble<"no answer to SABME, sent %d times in %s: nothing on layer 2">(about, link.first, link.tries,
                                                                                    took);
    } else {
        tell_trouble<"the router does not answer SABME, received %d times in %s">(about, link.first, link.tries, took);
    }
}

void conclude_link(const data_link& link, const journal& about) {
    if (link.tries >= MANY_TRIES && !link.refused && link.lost == about.lost) {
        tell_tries(link, about);
    }
    if (link.rejects >= MANY_REJECTS && link.rejects * 100 >= link.information) {
        tell_trouble<"%lu frames on %s were asked for again (REJ): noise on the line">(about, link.first_reject,
                                                                                       link.rejects, tei_text(link));
    }
}

void end_link(link_tracker& tracker, const journal& about, const frame& what, int key) {
    data_link* const link = tracker.links.find(key);
    if (link == nullptr) {
        return;
    }
    link->down = what.at;
    link->down_by_router = what.sent;
    conclude_link(*link, about);
    tracker.links.finish(key);
}

void take_sabme(link_tracker& tracker, const journal& about, const frame& what, int key) {
    data_link* link = tracker.links.find(key);
    const bool given_up = link != nullptr && !link->up && elapsed(link->last_try, what.at) >= PAUSE_MS;
    if (given_up) {
        conclude_link(*link, about);
    }
    if (link == nullptr || given_up) {
        link = &begin_link(tracker, about, what, key);
    }
    if (link->up) {
        ++link->anew;
        return;
    }
    ++link->tries;
    link->last_try = what.at;
}

void take_dm(link_tracker& tracker, const journal& about, const frame& what, int key) {
    data_link* const link = tracker.links.find(key);
    if (link == nullptr || link->up || link->tries == 0) {
        end_link(tracker, about, what, key);
        return;
    }
    link->refused = true;
    tell_trouble<"the data link on %s is refused (DM)">(about, link->first, tei_text(*link));
    end_link(tracker, about, what, key);
}

void take_numbered(link_tracker& tracker, const journal& about, const frame& what, int key) {
    data_link& link = link_that_is_up(tracker, about, what, key);
    if (lapd_is_i_frame(what.data)) {
        ++link.information;
    } else if (what.data[2] == REJ && link.rejects++ == 0) {
        link.first_reject = what.at;
    }
}

void take_unnumbered(link_tracker& tracker, const journal& about, const frame& what, int key) {
    switch (what.data[2] & ~LAPD_POLL_FINAL) {
        case SABME:
            take_sabme(tracker, about, what, key);
            break;
        case UA:
            if (tracker.links.find(key) != nullptr) {
                link_that_is_up(tracker, about, what, key);
            }
            break;
        case DM:
            take_dm(tracker, about, what, key);
            break;
        case DISC:
            end_link(tracker, about, what, key);
            break;
        case FRMR:
            tell_trouble<"a frame was not understood on TEI %d (FRMR)">(about, what.at, lapd_tei(what.data));
            break;
        default:
            break;
    }
}

// --- Rows

void print_tei(section& rows, const tei_event& event) {
    switch (event.what) {
        case kind::REQUESTED:
            print_row<"TEI asked for, %s: no answer">(rows, event.first, times_text(event.tries));
            break;
        case kind::ASSIGNED:
            if (event.tries > 1) {
                print_row<"TEI %d assigned after %d requests in %s">(
                    rows, event.first, event.tei, event.tries, duration_text(elapsed(event.first, event.last_try)));
            } else {
                print_row<"TEI %d assigned">(rows, event.first, event.tei);
            }
            break;
        case kind::DENIED:
            print_row<"TEI refused">(rows, event.first);
            break;
        case kind::REMOVED:
            if (event.tei == GROUP_TEI) {
                print_row<"all TEIs removed">(rows, event.first);
            } else {
                print_row<"TEI %d removed">(rows, event.first, event.tei);
            }
            break;
    }
}

void put_up(text_sink& out, const data_link& link) {
    if (link.began_before) {
        put(out, "up, began before");
    } else if (link.refused) {
        put(out, "refused (DM)");
    } else if (!link.up) {
        print_to<"SABME %s: no answer">(out, times_text(link.tries));
    } else {
        print_to<"up after %s">(out, duration_text(elapsed(link.first, *link.up)));
        if (link.tries > 1) {
            print_to<" and %d SABMEs">(out, link.tries);
        }
    }
}

void put_link(text_sink& out, const data_link& link, const journal& about) {
    print_to<"data link on %s: ">(out, tei_text(link));
    put_up(out, link);
    if (link.anew > 0) {
        print_to<", set up anew %s">(out, count_text(link.anew, "time"));
    }
    if (link.rejects > 0) {
        print_to<", %lu REJ">(out, link.rejects);
    }
    if (link.up && link.down) {
        print_to<", down after %s">(out, duration_text(elapsed(*link.up, *link.down)));
        if (about.has_sent) {
            put(out, link.down_by_router ? " by the router" : " by the other side");
        }
    }
}

}  // namespace

void take_link_frame(link_tracker& tracker, const journal& about, const frame& what) {
    const octets data = what.data;
    const int control = data[2];
    const int key = lapd_sapi(data) << 7 | lapd_tei(data);
    if (lapd_tei(data) == GROUP_TEI) {
        const octets message = data.skip(lapd_header_length(data));
        const bool management = lapd_sapi(data) == SAPI_MANAGEMENT && (control & ~LAPD_POLL_FINAL) == UI;
        if (management && message[0] == PD_MANAGEMENT && message.length > 4) {
            take_management(tracker, about, what, message.skip(1));
        }
    } else if ((control & 3) == 3) {
        take_unnumbered(tracker, about, what, key);
    } else {
        take_numbered(tracker, about, what, key);
    }
}

void finish_links(link_tracker& tracker, const journal& about) {
    tracker.links.for_each_lasting([&](const data_link& link) { conclude_link(link, about); });
    if (tracker.tei_waits) {
        tell_no_tei(tracker.teis.back(), about);
    }
}

void print_links(const link_tracker& tracker, const journal& about) {
    section teis;
    for (const tei_event& event : tracker.teis) {
        print_tei(teis, event);
    }
    teis.left_out += tracker.more_teis;
    end_section(teis);
    section links;
    for (const data_link* const link : tracker.links.in_order()) {
        text_buffer<MAX_ROW> text;
        put_link(text, *link, about);
        print_row_text(links, link->first, text.text());
    }
    links.left_out += tracker.links.forgotten();
    end_section(links);
}

}  // namespace ifwatch::reporting
