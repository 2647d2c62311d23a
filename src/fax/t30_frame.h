#pragma once

#include <string_view>

#include "base/octets.h"

namespace ifwatch {

// Frame of the T.30 procedure behind its HDLC address and control octets (ITU-T T.30 clause 5.3):
//
//     octet 0   facsimile control field FCF; bit 0 set: from the station that received a valid DIS
//     octet 1   facsimile information field FIF, to the end of the frame

/// Prints the frame's name on the current line and, behind it or in lines below it, what its FIF holds: identification,
/// capabilities (DIS, DTC, DCS, CTC), the numbers of error-correction frames. An unknown FCF is shown as two
/// hexadecimal digits. Octets that are not held read as 0.
void dump_t30_frame(octets frame);

/// The name of a frame without fields of its own, such as MCF; empty for any other.
[[nodiscard]] std::string_view t30_frame_name(int fcf);

/// Reverses the octets held of `field` in place: identifications are sent last character first.
void reverse_octets(octets field);

}  // namespace ifwatch
