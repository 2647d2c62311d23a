#pragma once

#include <cstdint>

#include "base/octets.h"

namespace ifwatch {

struct display_context;

/// Prints one B-channel payload: peels the link and network headers off in a fixed order and offers what is left to
/// every decoder that the mode flags of `context` ask for. `record_flags` is the flags word of the record (bit 0: sent
/// by the router). A header longer than the payload, or nothing behind it, ends the decoding; what was printed before
/// stands. A payload that is nested too deep in tunnels prints nothing.
void dump_bchannel(octets payload, std::uint32_t record_flags, display_context& context);

}  // namespace ifwatch
