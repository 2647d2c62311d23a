#pragma once

#include "base/octets.h"

namespace ifwatch {

// Management information element of AT&T networks (codeset 6, identifier 0x7A). Bit 7 of octets 3, 4 and 5 tells that
// the octet behind is there; the length and the value of the parameter always follow:
//
//     octet 2    protocol
//     octet 3    transaction reference
//     octet 4    operation code (6-4), operation type (1-0)
//     octet 5    coding, or the error of a Reject
//     octet 6    parameter identifier
//     then       length of the parameter value, parameter value

/// Prints the contents of a management element. The parameter value is printed when it lies inside the element.
void dump_management_protocol(octets element);

}  // namespace ifwatch
