#pragma once

#include "isdn/capability_group.h"

namespace ifwatch {

/// Prints octet 5 of a capability element, at which `group` stands, and octets 5a to 5d: the layer 1 protocol, the
/// user rate and what the protocol adds. Leaves `group` at the last octet read, or at the end of the element.
void dump_layer1_protocol(capability_group& group);

}  // namespace ifwatch
