#pragma once

#include <cstdint>
#include <vector>

#include "read/report/data_link.h"
#include "read/report/journal.h"

namespace ifwatch::reporting {

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
struct lapd_tracker {
    static constexpr std::size_t MOST_TEI_EVENTS = 256;

    data_links links;
    std::vector<tei_event> teis;
    std::uint64_t more_teis = 0;
    bool tei_waits = false;  // the last event is a request without an answer
};

/// One LAPD frame that no call is in: its part in setting links up and down, and TEI management. Returns whether it
/// took down a link that was up.
bool take_lapd_frame(lapd_tracker& tracker, const journal& about, const frame& what);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_lapd(lapd_tracker& tracker, const journal& about);

void print_lapd_section(const lapd_tracker& tracker, const journal& about);

}  // namespace ifwatch::reporting
