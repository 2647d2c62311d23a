#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "read/report/journal.h"
#include "read/report/lapb_tracker.h"
#include "read/report/remembered.h"
#include "read/report/x25_call.h"

namespace ifwatch::reporting {

/// A logical channel of one link.
struct x25_key {
    std::int32_t link = 0;
    std::int32_t channel = 0;

    [[nodiscard]] constexpr bool operator==(const x25_key&) const = default;
};

/// A RESTART of all channels of one link.
struct x25_restart {
    place first;
    std::uint64_t lost = 0;  // records that had been lost up to it
    int link = 0;
    x25_reason why;
    int tries = 1;
    place last_try;
    std::optional<place> confirmed;
    std::uint64_t ended_calls = 0;
};

/// LAPB and X.75 links, and the X.25 calls above them (ITU-T X.25, X.75; X.31 in a D-channel).
struct x25_tracker {
    static constexpr std::size_t LINKS = 128;
    static constexpr int CHANNELS = 4096;
    static constexpr int WORD = 64;  // channels in one number

    /// What is known of the packets of one link.
    struct link_state {
        bool is_x25 = false;     // beyond doubt: calls are told of it
        bool restarted = false;  // since when every call was seen, unless records are lost
        std::uint64_t lost = 0;  // up to the restart
        // A bit for each channel that a call began on since all of them ended; empty before the first. Of the calls of
        // the other links a restart need not know.
        std::vector<std::uint64_t> begun = {};
    };

    bool seen = false;
    lapb_tracker lapb;
    std::array<link_state, LINKS> links{};
    remembered<x25_key, x25_call> calls;
    remembered<int, x25_restart> restarts;  // by link
};

/// One LAPB frame. Returns the user data of an X.25 or T.70 data packet in it, of length 0 where there are none: the
/// packet only goes on with those of the last one, or comes once more.
[[nodiscard]] octets take_lapb(x25_tracker& tracker, const journal& about, const frame& what);

/// One X.25 packet of the link with this number, as the TEI is one in a D-channel; take_lapb() uses -1.
/// Returns the user data as take_lapb() does.
octets take_x25(x25_tracker& tracker, const journal& about, const frame& what, int link);

/// The data link with this number went down with this frame: its calls are over.
void take_x25_link_down(x25_tracker& tracker, const journal& about, const frame& what, int link);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_x25(x25_tracker& tracker, const journal& about);

[[nodiscard]] bool x25_was_seen(const x25_tracker& tracker);
void print_x25_section(const x25_tracker& tracker, const journal& about);

}  // namespace ifwatch::reporting
