#pragma once

#include <array>
#include <cstdint>

#include "read/report/data_link.h"
#include "read/report/journal.h"

namespace ifwatch::reporting {

/// The LAPB or X.75 link of one interface (ITU-T X.25 clause 2, X.75), and which of its I frames arrive.
struct lapb_tracker {
    /// The I frames of one direction. On a line with errors the same ones come again.
    struct numbering {
        bool known = false;
        int expected = 0;
        int acknowledged = 0;
        std::uint64_t lost = 0;  // records that had been lost up to the last of them
    };

    data_links links;
    bool modulo128 = false;
    std::array<numbering, 2> directions{};  // by the address of their commands
};

/// What one frame brings to the layer above.
struct lapb_news {
    bool link_down = false;  // the link was up until now
    octets packet;           // of an I frame that comes for the first time and in its order; else of length 0
};

/// One LAPB frame. One of no LAPB station is left alone.
lapb_news take_lapb_link(lapb_tracker& tracker, const journal& about, const frame& what);

}  // namespace ifwatch::reporting
