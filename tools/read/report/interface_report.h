#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "display/display_context.h"
#include "read/report/cell_tracker.h"
#include "read/report/eft_tracker.h"
#include "read/report/fax_tracker.h"
#include "read/report/isdn_tracker.h"
#include "read/report/journal.h"
#include "read/report/lan_tracker.h"
#include "read/report/line_tracker.h"
#include "read/report/ppp_tracker.h"
#include "read/report/pppoe_tracker.h"
#include "read/report/x25_tracker.h"

namespace ifwatch::reporting {

/// What was seen of one interface, whatever it carried.
struct seen_counts {
    struct direction {
        std::uint64_t frames = 0;
        std::uint64_t octets = 0;  // on the line
    };

    place first;
    place last;
    std::uint64_t records = 0;
    direction sent;
    direction received;
    std::uint64_t lost = 0;     // by the gaps of the sequence numbers
    std::uint64_t unknown = 0;  // frames that no decoder knew
};

/// What a B-channel carries, where the command line does not say it: found by the first frame that tells.
enum class channel_content : std::uint8_t { UNKNOWN, PPP, LAPB };

/// One interface of the report: who it is, and what each tracker knows of it.
struct interface_report {
    std::string name;    // as the capture has it; may be empty
    std::string router;  // likewise
    int channel_type = 0;
    std::uint32_t mode_flags = 0;  // as the decoders have them
    journal about;
    seen_counts seen;
    channel_content content = channel_content::UNKNOWN;
    std::array<async_state, 2> async{};  // the first for records with any flag set

    line_tracker line;
    cell_tracker cells;
    isdn_tracker isdn;
    ppp_tracker ppp;
    pppoe_tracker pppoe;
    x25_tracker x25;
    fax_tracker fax;
    eft_tracker eft;
    lan_tracker lan;
};

}  // namespace ifwatch::reporting
