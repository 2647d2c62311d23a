#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints one element of codeset 5 (national use): nothing of it is known, so only a line end.
void dump_ie_codeset5(int variant, octets element);

/// Prints one element of codeset 6 (local network: FTZ 1 TR 6, and the management elements of AT&T networks), its
/// line end included. Fixed octets are read without a look at the element's length.
void dump_ie_codeset6(int variant, octets element);

}  // namespace ifwatch
