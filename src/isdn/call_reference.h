#pragma once

#include <cstdint>

#include "base/octets.h"

namespace ifwatch {

// Protocol discriminators of layer-3 messages on a D-channel.
inline constexpr int PD_Q931 = 0x08;
inline constexpr int PD_MANAGEMENT = 0x0F;    // Q.931 management messages; TEI management entity of ITU-T Q.921
inline constexpr int PD_1TR6_CONTROL = 0x40;  // FTZ 1 TR 6: facility messages
inline constexpr int PD_1TR6_CALL = 0x41;     // FTZ 1 TR 6: call control

/// Whether the messages of a call carry this discriminator, and so a call reference that a filter can ask for.
[[nodiscard]] constexpr bool has_call_reference(int discriminator) {
    return discriminator == PD_Q931 || discriminator == PD_1TR6_CONTROL || discriminator == PD_1TR6_CALL;
}

/// The call reference of a message that starts at its protocol discriminator, the flag cleared (ITU-T Q.931 clause
/// 4.3); 0 for the dummy call reference. One of more than four octets wraps at 32 bits; octets cut off count as 0.
[[nodiscard]] std::int32_t call_reference(octets message);

}  // namespace ifwatch
