#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the layer-3 header behind a link header, told by bits 5-4 of its first octet: the network header of a
/// circuit-switched data connection (ITU-T T.70), an X.25 packet, or "RESERVED". Returns the octets of the header;
/// the number that a T.70 length indicator names may exceed those that are there.
int dump_t70_packet(octets packet);

}  // namespace ifwatch
