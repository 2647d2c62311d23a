#pragma once

#include <cstdint>

#include "base/octets.h"
#include "display/bchannel.h"
#include "display/display_context.h"

namespace ifwatch {

/// Why a frame was thrown away.
enum class framing_error : std::uint8_t { NONE = 0, ABORT = 11, TOO_SMALL = 22, FCS = 33, TOO_LONG = 44 };

/// One walk over a slice of an octet-stuffed stream (RFC 1662 clause 4).
struct async_scanner {
    octets rest;         // what is left of the slice
    async_state& state;  // of the direction of the slice
    octets frame{};      // the frame completed last, without its FCS; it lies in the state's buffer
    framing_error error = framing_error::NONE;
    int error_count = 0;  // octets that had been stored when the error came
};

/// Takes octets of the slice until a frame is complete (true), a frame is thrown away (false, with `error` set) or the
/// slice ends (false). Either way the next octet belongs to a new frame, or goes on with the one begun. A complete
/// frame stays in the buffer only until the next octet is taken.
bool async_next_frame(async_scanner& scanner);

/// How a completed frame is decoded: like dump_bchannel.
using frame_decoder = void (*)(octets frame, std::uint32_t record_flags, display_context& context);

/// Takes one slice of an asynchronous HDLC stream, where a frame may spread over many records: announces and decodes
/// each frame that the slice completes, reports those thrown away together with their octets, and announces a slice
/// that only continues a frame. Each direction has a reassembly state of its own, chosen by `record_flags`.
void dump_data_packet(octets payload, std::uint32_t record_flags, display_context& context,
                      frame_decoder decode = dump_bchannel);

/// Prints the octets as text on one line, in hexadecimal where they are not printable.
void dump_text(octets data);

}  // namespace ifwatch
