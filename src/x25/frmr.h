#pragma once

#include <span>

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

/// Why a frame was rejected, by the bits of the last octet of the information field from bit 0 on.
extern const std::span<const table_text> FRMR_REASONS;

/// Prints the information field of an FRMR frame (ITU-T X.25 clause 2.3.4.9) from `offset` on: the rejected control
/// field, C/R, V(R) and V(S), and a line for each reason bit. A shorter field gets fewer lines. Returns the length of
/// the frame.
int dump_frmr_info(octets frame, int offset);

}  // namespace ifwatch
