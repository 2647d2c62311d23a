#pragma once

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

/// Prints the contents of a high layer compatibility element (ITU-T Q.931 clause 4.5.17): coding standard,
/// interpretation, presentation method, and the high layer characteristics with their extension when they are there.
/// An element without contents gets nothing.
void dump_high_layer_compatibility(octets element);

/// The name of the high layer characteristics of the element; nothing when it tells none, or one without a name.
[[nodiscard]] table_text high_layer_name(octets element);

}  // namespace ifwatch
