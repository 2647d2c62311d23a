#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints one TEI management message (ITU-T Q.921 clause 5.3) from the octet behind the management entity identifier
/// 0x0F on: its name, reference number Ri, action indicator Ai and extension bit. Octets that are not held read as 0.
void dump_tei_management(octets message);

}  // namespace ifwatch
