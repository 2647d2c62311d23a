#pragma once

#include "base/octets.h"
#include "base/text_sink.h"

namespace ifwatch {

// Header word of a cell, ITU-T I.361 (UNI), as the trace delivers it: in host order.
//
//     bits 31-28 GFC   bits 27-20 VPI   bits 19-4 VCI   bits 3-1 PTI   bit 0 CLP

inline constexpr int CELL_USER_DATA = 0;
inline constexpr int CELL_OAM = 1;
inline constexpr int CELL_IMA = 2;

/// Writes what the header of `cell` says (its PTI or reserved VCI by name, VPI and VCI) to `out`, stores the class of
/// the cell and returns the number of characters written. An IMA filler cell writes nothing and counts as user data;
/// octets that are not held read as 0.
int format_cell_header(text_sink& out, octets cell, int& cell_class);

}  // namespace ifwatch
