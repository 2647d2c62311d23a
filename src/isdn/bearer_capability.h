#pragma once

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

// Bearer capability and low layer compatibility, ITU-T Q.931 clauses 4.5.5 and 4.5.19. Bit 7 set ends a group:
//
//     octet 3    coding standard (6-5), information transfer capability (4-0)    } 3a: negotiation
//     octet 4    transfer mode (6-5), information transfer rate (4-0)            } 4a, 4b: structure, other direction
//     octet 5    01 (6-5), layer 1 protocol (4-0)                                } 5a to 5d: user rate and its details
//     octet 6    10 (6-5), layer 2 protocol (4-0)
//     octet 7    11 (6-5), layer 3 protocol (4-0)

/// Prints the contents of either element group by group, and stops at the first octet that would lie behind its end.
void dump_bearer_capability(octets element);

/// The name of the information transfer capability of either element; nothing for one of another coding standard or
/// without a name.
[[nodiscard]] table_text information_capability_name(octets element);

/// The name of the layer 2 protocol that either element tells; nothing when it tells none, or one without a name.
[[nodiscard]] table_text layer2_protocol_name(octets element);

}  // namespace ifwatch
