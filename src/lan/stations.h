#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the destination and the source address of a MAC header, six octets each: "DST=... SRC=...".
void print_stations(octets addresses);

}  // namespace ifwatch
