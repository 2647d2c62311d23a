#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "read/report/journal.h"

namespace ifwatch::reporting {

/// What happened to a physical line, from a record on.
struct line_change {
    enum class kind : std::uint8_t { ACTIVATING, ACTIVATED, NOT_ACTIVATED, DEACTIVATED, LOST_STEP, DOWN, DOWN_AND_UP };

    place first;
    kind what = kind::ACTIVATING;
    bool was_up = false;  // before it
    std::uint32_t took_ms = 0;
    std::uint32_t furthest = 0;  // state that was reached while it was activated
};

/// What the physical line of one interface did: layer 1 up and down (states of ITU-T I.430, or DSL as a whole), and
/// line errors by kind.
struct line_tracker {
    static constexpr std::size_t MOST_CHANGES = 256;

    struct tally {
        place first;
        std::uint64_t count = 0;
    };

    std::vector<line_change> changes;  // in the order of time; the last one may go on
    std::uint64_t more_changes = 0;
    bool goes_on = false;           // the last change: the line is not up yet
    bool up = false;                // as far as is known
    std::array<tally, 4> errors{};  // by event code, from FIRST_LINE_ERROR on
    tally slips;
};

/// An event record: its code, and the state that goes with code 7.
void take_line_event(line_tracker& line, const journal& about, std::uint32_t code, std::uint32_t state);

/// A frame came over the line: it is up.
inline void take_line_data(line_tracker& line) { line.up = line.up || line.changes.empty(); }

/// What can only be said at the end. Nothing may be taken behind it.
void finish_line(line_tracker& line, const journal& about);

[[nodiscard]] bool line_was_seen(const line_tracker& line);
void print_line_section(const line_tracker& line);

}  // namespace ifwatch::reporting
