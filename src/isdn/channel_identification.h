#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the contents of a channel identification element (ITU-T Q.931 clause 4.5.13): the flags of its first octet
/// and the selected channel of a basic interface, or the interface identifiers, channel numbers or channel map of a
/// primary-rate one. Interface identifiers and numbers end with the element; the four octets of a B-channel map are
/// read wherever they stand.
void dump_channel_identification(octets element);

}  // namespace ifwatch
