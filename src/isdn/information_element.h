#pragma once

#include "base/octets.h"

namespace ifwatch {

// Information element, ITU-T Q.931 clause 4.5:
//
//     octet 0     identifier; bit 7 set: a single-octet element (bits 6-4 type, bits 3-0 value)
//     octet 1     length of the contents   } variable-length elements only
//     octet 2..   contents                 }
//
// The decoders of elements take the whole element: `length` is the element's, identifier and length octet included,
// and the hard end is that of the message. Fixed octets of an element that is too short are read from what follows
// it; loops end with the element.

// The protocol variant of a message, where an element's contents depend on it.
inline constexpr int VARIANT_1TR6 = 1;
inline constexpr int VARIANT_Q931 = 2;

/// Prints one element of codeset 0, its line end included.
void dump_ie_codeset0(int variant, octets element);

}  // namespace ifwatch
