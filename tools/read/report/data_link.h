#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "read/report/journal.h"
#include "read/report/remembered.h"

namespace ifwatch::reporting {

/// Which data link a frame is of: on a D-channel one of those that a SAPI and a TEI name, elsewhere the only one.
struct link_identity {
    static constexpr int NO_TEI = -1;

    int sapi = 0;
    int tei = NO_TEI;
    const char* set_up_by = "SABM";  // the command that sets it up

    [[nodiscard]] constexpr int key() const { return sapi << 8 | (tei & 0xFF); }
};

/// A data link (ITU-T Q.921 on a D-channel; LAPB, X.75), from its SABM or SABME to its end.
struct data_link {
    place first;
    std::uint64_t lost = 0;  // records that had been lost up to its first frame
    link_identity identity;
    bool began_before = false;  // it was up when the first frame of it was seen
    bool sent = false;          // the router sent the SABM
    int tries = 0;              // SABMs up to the answer
    place last_try;
    std::optional<place> up;
    std::optional<place> down;
    bool down_by_router = false;
    bool refused = false;    // DM
    std::uint64_t anew = 0;  // SABMs while it was up
    std::uint64_t information = 0;
    std::uint64_t rejects = 0;
    place first_reject;
};

using data_links = remembered<int, data_link>;

/// Whoever begins again after so long has given up before.
inline constexpr std::uint32_t SET_UP_PAUSE_MS = 10'000;
/// A repetition now and then is in order: the other side may just wake up.
inline constexpr int MANY_TRIES = 3;

/// The part of one frame in setting a link up and down, by its control octet. What is in its information field, and
/// FRMR, is the caller's. Returns whether it took down a link that was up.
bool take_link_control(data_links& links, const journal& about, const frame& what, const link_identity& of,
                       int control);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_data_links(data_links& links, const journal& about);

void print_data_links(const data_links& links, const journal& about);

}  // namespace ifwatch::reporting
