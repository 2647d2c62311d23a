#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the facility field of an X.25 packet (ITU-T X.25 clauses 6 and 7, annex G): a length and as many octets of
/// facilities, each a code whose top two bits tell the length of its parameters. Takes what is left of the packet and
/// returns the octets of the field; one less behind "Facility ERROR", which a facility gets that runs past the field.
/// The bit that marks an address extension as not X.213 is cleared in the octets themselves.
int dump_x25_facilities(octets field);

}  // namespace ifwatch
