#pragma once

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

/// Prints the contents of a cause element: the cause value of ITU-T Q.850 or, for VARIANT_1TR6, of FTZ 1 TR 6, with
/// its extension bit, and its text. An element of no contents is "empty"; for another variant nothing more is known.
void dump_cause(int variant, octets element);

/// The cause value of a cause element of VARIANT_Q931 or VARIANT_1TR6, with its extension bit; 0 for an element of no
/// contents.
[[nodiscard]] int cause_value(int variant, octets element);

/// The text of such a value; nothing when it has none.
[[nodiscard]] table_text cause_name(int variant, int cause);

}  // namespace ifwatch
