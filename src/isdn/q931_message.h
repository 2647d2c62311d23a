#pragma once

#include "base/octets.h"

namespace ifwatch {

// Layer-3 message, ITU-T Q.931 clause 4 (FTZ 1 TR 6 has the same layout):
//
//     octet 0         protocol discriminator
//     octet 1         length n of the call reference; 0: the dummy one
//     octets 2..1+n   call reference; bit 7 of its first octet: set by the side that did not originate the call
//     octet 2+n       message type; 0x00: the type is in the next octet
//     then            information elements

/// Prints one signalling message of a D-channel: protocol discriminator, call reference, message type, and each
/// information element; or a TEI management message. The flag of the call reference is cleared in the message itself.
///
/// `variant` (see information_element.h) counts only for a protocol discriminator that is not known: no header is
/// printed then, and the elements are walked from the octet behind it. An element longer than what remains ends the
/// walk silently.
void dump_layer3(int variant, octets message);

}  // namespace ifwatch
