#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "read/report/journal.h"

namespace ifwatch::reporting {

/// The cells that watch the circuits of an ATM interface (ITU-T I.610): alarms, and loopback cells without answer.
struct cell_tracker {
    static constexpr std::size_t MOST_CIRCUITS = 64;
    static constexpr std::size_t MOST_WAITING = 32;

    struct alarm {
        place first;
        place last;
        std::uint64_t cells = 0;
    };

    struct loopback {
        place first;
        std::uint32_t tag = 0;
        bool sent = false;
        std::uint64_t lost = 0;  // records that had been lost up to it
    };

    struct circuit {
        place first;
        alarm indication;  // AIS
        alarm remote;      // RDI
        std::vector<loopback> waiting;
        std::uint64_t loopbacks = 0;
        std::uint64_t answered = 0;
        std::uint64_t unanswered = 0;
    };

    std::map<std::uint32_t, circuit> circuits;  // by VPI and VCI
    std::uint64_t left_out = 0;                 // cells of further circuits
};

/// One OAM cell, from its four octets of header on.
void take_cell(cell_tracker& tracker, const journal& about, const frame& what);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_cells(cell_tracker& tracker, const journal& about);

[[nodiscard]] bool cells_were_seen(const cell_tracker& tracker);
void print_cell_section(const cell_tracker& tracker);

}  // namespace ifwatch::reporting
