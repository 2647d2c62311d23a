#pragma once

#include "base/octets.h"
#include "x25/control_octets.h"

namespace ifwatch {

// LAPD frame header, ITU-T Q.921 clause 3:
//
//     octet 0   SAPI (7-2)   C/R (1)   EA0 (0)
//     octet 1   TEI (7-1)              EA1 (0)
//     octet 2   control, first octet
//     octet 3   N(R) (7-1)   P/F (0)             I and S frames only

/// Octets of the layer-2 header: 3 when bit 0 of the control octet is set (U and S frames), otherwise 4.
[[nodiscard]] constexpr int lapd_header_length(octets frame) { return (frame[2] & 1) != 0 ? 3 : 4; }

[[nodiscard]] constexpr int lapd_sapi(octets frame) { return frame[0] >> 2; }
[[nodiscard]] constexpr int lapd_tei(octets frame) { return frame[1] >> 1; }

/// An I frame, the only numbered frame that carries layer 3.
[[nodiscard]] constexpr bool lapd_is_i_frame(octets frame) { return (frame[2] & 1) == 0; }

/// An I or UI frame: one that carries layer 3.
[[nodiscard]] constexpr bool lapd_carries_layer3(octets frame) {
    return lapd_is_i_frame(frame) || (frame[2] & ~POLL_FINAL) == UI;
}

/// Prints the layer-2 line: SAPI, C/R, TEI, the frame's name and its sequence numbers (modulo 128). An unknown
/// control octet gets the line "Illegal D-Channel Message"; octets that are not held read as 0.
void dump_lapd(octets frame);

}  // namespace ifwatch
