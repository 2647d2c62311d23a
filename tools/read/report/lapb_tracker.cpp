#include "read/report/lapb_tracker.h"

#include <algorithm>

#include "read/report/page.h"
#include "x25/control_octets.h"
#include "x25/frmr.h"
#include "x25/lapb.h"

namespace ifwatch::reporting {

namespace {

// The stations A and B, and C and D of a multilink procedure; a command bears the address of the one that it is for.
constexpr int STATION_A = 0x03;
constexpr int STATION_B = 0x01;
constexpr int STATION_C = 0x0F;
constexpr int STATION_D = 0x07;

bool is_station(int address) {
    return address == STATION_A || address == STATION_B || address == STATION_C || address == STATION_D;
}

std::size_t direction_of(octets frame) { return frame[0] == STATION_A || frame[0] == STATION_C ? 1 : 0; }

void begin_numbering(lapb_tracker& tracker, const journal& about) {
    tracker.directions.fill({.known = true, .expected = 0, .acknowledged = 0, .lost = about.lost});
}

/// What the other side acknowledges has arrived there, and what it cannot have got yet was not seen here.
void take_acknowledgement(lapb_tracker::numbering& of, int nr, int mask) {
    if (!of.known) {
        return;
    }
    if (((nr - of.acknowledged) & mask) > ((of.expected - of.acknowledged) & mask)) {
        of.expected = nr;
    }
    of.acknowledged = nr;
}

bool is_in_order(lapb_tracker::numbering& own, int ns, int mask, const journal& about) {
    if (!own.known || own.lost != about.lost) {
        own = {.known = true, .expected = ns, .acknowledged = ns, .lost = about.lost};
    }
    const bool in_order = ns == own.expected;
    if (in_order) {
        own.expected = (ns + 1) & mask;
    }
    return in_order;
}

octets take_information(lapb_tracker& tracker, const journal& about, octets frame, const lapb_header& header) {
    const int mask = tracker.modulo128 ? 127 : 7;
    const std::size_t direction = direction_of(frame);
    take_acknowledgement(tracker.directions[1 - direction], header.nr, mask);
    const bool in_order = is_in_order(tracker.directions[direction], header.ns, mask, about);
    return in_order ? frame.skip(tracker.modulo128 ? 3 : 2) : frame.cut(0);
}

const char* who(const journal& about, bool sent) {
    if (!about.has_sent) {
        return "a station";
    }
    return sent ? "the router" : "the other side";
}

void tell_frame_reject(const lapb_tracker& tracker, const journal& about, const frame& what) {
    const octets information = what.data.skip(2);
    const int reasons = information[tracker.modulo128 ? 4 : 2];
    table_text reason = "no reason told";
    for (int bit = static_cast<int>(FRMR_REASONS.size()) - 1; bit >= 0; --bit) {
        reason = (reasons >> bit & 1) != 0 ? name_at(FRMR_REASONS, bit) : reason;
    }
    tell_trouble<"%s did not understand a frame (FRMR): %s">(about, what.at, who(about, what.sent), reason);
}

}  // namespace

lapb_news take_lapb_link(lapb_tracker& tracker, const journal& about, const frame& what) {
    lapb_news news{false, what.data.cut(0)};
    if (!is_station(what.data[0]) || what.data.length < 2) {
        return news;
    }
    const lapb_header header = read_lapb_header(what.data, tracker.modulo128);
    const int type = header.control & ~POLL_FINAL;
    const link_identity identity{.set_up_by = type == SABME ? "SABME" : "SABM"};
    news.link_down = take_link_control(tracker.links, about, what, identity, header.control);
    if ((header.control & 1) == 0) {
        news.packet = take_information(tracker, about, what.data, header);
    } else if (type == FRMR) {
        tell_frame_reject(tracker, about, what);
    } else if (type == SABM || type == SABME || type == DISC) {
        tracker.modulo128 = type == SABME;
        begin_numbering(tracker, about);
    } else if (type == UA) {
        begin_numbering(tracker, about);
    }
    return news;
}

}  // namespace ifwatch::reporting
