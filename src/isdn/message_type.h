#pragma once

#include "base/octets.h"

namespace ifwatch {

// Each prints the name of the message type that `message` begins with and returns the octets it took. An unknown type
// gets the line "Illegal D-Channel Message" in place of a name.

/// ITU-T Q.931 clause 4.4: the name and a line end. Behind the escape octet 0x00 stands a type of another set.
int dump_q931_type(octets message);

/// FTZ 1 TR 6 call control (protocol discriminator 0x41): the name alone, no line end.
int dump_1tr6_call_type(octets message);

/// FTZ 1 TR 6 facility messages (protocol discriminator 0x40): the name alone, no line end.
int dump_1tr6_control_type(octets message);

}  // namespace ifwatch
