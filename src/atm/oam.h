#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

/// Prints the payload of an OAM cell (ITU-T I.610), the cell header already taken off: the function by name and the
/// fields it has. An unknown type and function is named "undefined" and shows no fields; fields of two and four
/// octets are shown in host order; octets that are not held read as 0.
void dump_oam(octets payload, display_context& context);

}  // namespace ifwatch
