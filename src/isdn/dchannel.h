#pragma once

#include <cstdint>

#include "base/octets.h"

namespace ifwatch {

/// The call reference of the signalling message in a LAPD frame, its flag cleared; -1 when the frame carries no layer
/// 3, the protocol discriminator has no call reference, or the call reference is the dummy one (ITU-T Q.931 clause
/// 4.3). A call reference of more than four octets wraps at 32 bits.
[[nodiscard]] std::int32_t message_callref(octets frame);

/// Prints one D-channel frame: the layer-2 line, unless the TEI filter excludes it, and what the frame carries, unless
/// the call-reference filter excludes it. `mode_flags` select the layers; a filter of -1 lets everything pass. A frame
/// shorter than its own layer-2 header gets an error line and nothing else.
void dump_dchannel(octets frame, std::uint32_t mode_flags, std::int32_t tei_filter, std::int32_t cref_filter,
                   std::uint32_t record_flags);

}  // namespace ifwatch
