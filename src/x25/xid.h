#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the information field of an XID frame: the IEEE 802.2 field (format identifier 0x81), the ISO/IEC 8885 field
/// with its groups of parameters (0x82), or the octets of any other. It goes on behind the header line, and its last
/// line may lack its end. A group or parameter that runs past what holds it ends the walk with an error line. Returns
/// the length of the field in every case.
int dump_xid_info(octets field);

}  // namespace ifwatch
