#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the information field of an FRMR frame (ITU-T X.25 clause 2.3.4.9) from `offset` on: the rejected control
/// field, C/R, V(R) and V(S), and a line for each reason bit. A shorter field gets fewer lines. Returns the length of
/// the frame.
int dump_frmr_info(octets frame, int offset);

}  // namespace ifwatch
