#pragma once

#include <cstdint>

#include "base/names.h"
#include "base/octets.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

// Message types of a call that Q.931 (clause 4.4) and FTZ 1 TR 6 have in common.
inline constexpr int MESSAGE_ALERT = 0x01;
inline constexpr int MESSAGE_PROCEEDING = 0x02;
inline constexpr int MESSAGE_SETUP = 0x05;
inline constexpr int MESSAGE_CONNECT = 0x07;
inline constexpr int MESSAGE_SUSPEND_ACKNOWLEDGE = 0x2D;
inline constexpr int LAST_MESSAGE_WITHIN = 0x3F;  // of those that set a call up or belong to one that stands
inline constexpr int MESSAGE_DISCONNECT = 0x45;
inline constexpr int MESSAGE_RESTART = 0x46;
inline constexpr int MESSAGE_RELEASE = 0x4D;
inline constexpr int MESSAGE_RESTART_ACKNOWLEDGE = 0x4E;
inline constexpr int MESSAGE_RELEASE_COMPLETE = 0x5A;

inline constexpr int NO_CHANNEL = -1;
inline constexpr int NO_CAUSE = 0;
inline constexpr int NO_SERVICE = -1;
inline constexpr std::uint32_t ALL_CHANNELS = ~0U;

/// What one signalling message says of its call. Texts are empty where it has none.
struct call_message {
    bool of_call = false;  // else the rest says nothing: another discriminator, the dummy or the global call reference
    // What a RESTART or its acknowledgement clears, which are of no call: a bit for each channel (Q.931 clause 5.5).
    std::uint32_t restarted = 0;
    int variant = 0;  // as information_element.h has them
    std::int32_t reference = 0;
    bool from_destination = false;  // not by the side that began the call
    int type = 0;

    short_text calling;
    short_text called;  // digits, those of a keypad included
    short_text calling_subaddress;
    short_text called_subaddress;
    table_text bearer;
    table_text high_layer;
    table_text layer2;
    int service = NO_SERVICE;  // of FTZ 1 TR 6: the service indicator, and its additional information
    int channel = NO_CHANNEL;
    int cause = NO_CAUSE;  // with its extension bit
    int location = 0;      // of the cause, ITU-T Q.850 clause 2.2.3
};

/// Reads a layer-3 message from its protocol discriminator on. An element that is longer than the rest ends it.
[[nodiscard]] call_message read_call_message(octets message);

}  // namespace ifwatch::reporting
