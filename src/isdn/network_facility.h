#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the contents of a network-specific facilities element: the network (ITU-T Q.931 clause 4.5.21) or, for
/// VARIANT_1TR6, the facility that FTZ 1 TR 6 puts there. For another variant nothing is known of them.
void dump_network_specific_facility(int variant, octets element);

/// Prints the facility of a facility-select element of codeset 6 (FTZ 1 TR 6).
void dump_facility_select(octets element);

}  // namespace ifwatch
