#include "read/report/lapd_tracker.h"

#include <string>

#include "isdn/call_reference.h"
#include "isdn/lapd.h"
#include "read/report/page.h"
#include "x25/control_octets.h"

namespace ifwatch::reporting {

namespace {

using kind = tei_event::kind;

constexpr int SAPI_MANAGEMENT = 63;
constexpr int GROUP_TEI = 127;

// Of TEI management.
constexpr int IDENTITY_REQUEST = 1;
constexpr int IDENTITY_ASSIGNED = 2;
constexpr int IDENTITY_DENIED = 3;
constexpr int IDENTITY_REMOVE = 6;

std::string times_text(int times) { return count_text(static_cast<std::uint64_t>(times), "time"); }

// --- TEI management

void add_tei_event(lapd_tracker& tracker, tei_event event) {
    tracker.tei_waits = false;
    if (tracker.teis.size() >= lapd_tracker::MOST_TEI_EVENTS) {
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

void take_request(lapd_tracker& tracker, const journal& about, place at) {
    if (tracker.tei_waits && elapsed(tracker.teis.back().last_try, at) >= SET_UP_PAUSE_MS) {
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
void take_answer(lapd_tracker& tracker, const journal& about, place at, kind what, int tei) {
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

void take_management(lapd_tracker& tracker, const journal& about, const frame& what, octets message) {
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

}  // namespace

bool take_lapd_frame(lapd_tracker& tracker, const journal& about, const frame& what) {
    const octets data = what.data;
    const int control = data[2];
    if (lapd_tei(data) == GROUP_TEI) {
        const octets message = data.skip(lapd_header_length(data));
        const bool management = lapd_sapi(data) == SAPI_MANAGEMENT && (control & ~POLL_FINAL) == UI;
        if (management && message[0] == PD_MANAGEMENT && message.length > 4) {
            take_management(tracker, about, what, message.skip(1));
        }
        return false;
    }
    const bool link_down =
        take_link_control(tracker.links, about, what, {lapd_sapi(data), lapd_tei(data), "SABME"}, control);
    if ((control & ~POLL_FINAL) == FRMR) {
        const char* const who = what.sent ? "the router" : "the other side";
        tell_trouble<"%s did not understand a frame on TEI %d (FRMR)">(
            about, what.at, about.has_sent ? who : "a station", lapd_tei(data));
    }
    return link_down;
}

void finish_lapd(lapd_tracker& tracker, const journal& about) {
    finish_data_links(tracker.links, about);
    if (tracker.tei_waits) {
        tell_no_tei(tracker.teis.back(), about);
    }
}

void print_lapd_section(const lapd_tracker& tracker, const journal& about) {
    section teis;
    for (const tei_event& event : tracker.teis) {
        print_tei(teis, event);
    }
    teis.left_out += tracker.more_teis;
    end_section(teis);
    print_data_links(tracker.links, about);
}

}  // namespace ifwatch::reporting
