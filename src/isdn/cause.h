#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the contents of a cause element: the cause value of ITU-T Q.850 or, for VARIANT_1TR6, of FTZ 1 TR 6, with
/// its extension bit, and its text. An element of no contents is "empty"; for another variant nothing more is known.
void dump_cause(int variant, octets element);

}  // namespace ifwatch
