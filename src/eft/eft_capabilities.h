#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints what a T-ACCESS grants (ETS 300 075, user data of T-ACCESS), each item on a line of its own: the commands
/// and groups of the first two octets, navigation, and the capability sub-fields to the end of the value. The three
/// octets are read even when the value is shorter; a sub-field that passes its container ends the decoding.
void print_eft_capabilities(octets value);

}  // namespace ifwatch
