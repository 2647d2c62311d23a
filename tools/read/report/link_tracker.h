#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "read/report/journal.h"
#include "read/report/remembered.h"

namespace ifwatch::reporting {

/// A data link on a D-channel (ITU-T Q.921), from its SABME to its end.
struct data_link {
    place first;
    std::uint64_t lost = 0;  // records that had been lost up to its first frame
    int sapi = 0;
    int tei = 0;
    bool began_before = false;  // it was up when the first frame of it was seen
    bool sent = false;          // the router sent the SABME
    int tries = 0;              // SABMEs up to the answer
    place last_try;
    std::optional<place> up;
    std::optional<place> down;
    bool down_by_router = false;
    bool refused = false;    // DM
    std::uint64_t anew = 0;  // SABMEs while it was up
    std::uint64_t information = 0;
    std::uint64_t rejects = 0;
    place first_reject;
};

/// What became of the requests for a TEI, or of a TEI.
struct tei_event {
    enum class kind : std::uint8_t { REQUESTED, ASSIGNED, DENIED, REMOVED };

    place first;
    kind what = kind::REQUESTED;
    int tei = 0;
    int tries = 1;
    place last_try;
    std::uint64_t lost = 0;
};

/// The data links of one D-channel and the TEIs that they are on.
struct link_tracker {
    static constexpr std::size_t MOST_TEI_EVENTS = 256;

    remembered<int, data_link> links;  // by SAPI and TEI
    std::vector<tei_event> teis;
    std::uint64_t more_teis = 0;
    bool tei_waits = false;  // the last event is a request without an answer
};

/// One LAPD frame that no call is in: its part in setting links up and down, and TEI management.
void take_link_frame(link_tracker& tracker, const journal& about, const frame& what);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_links(link_tracker& tracker, const journal& about);

void print_links(const link_tracker& tracker, const journal& about);

}  // namespace ifwatch::reporting
