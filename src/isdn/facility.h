#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the contents of a facility element (ITU-T Q.932 clause 8.2): the service discriminator and, for
/// supplementary applications, the tag of the component and what it holds as an ASN.1 tree. What the tree shows ends
/// with the element.
void dump_facility(octets element);

}  // namespace ifwatch
