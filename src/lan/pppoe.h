#pragma once

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

struct display_context;

// PPPoE header, RFC 2516:
//
//     0   version (7-4), type (3-0)     1   code     2   session ID (2)     4   payload length (2)

/// Prints a PPPoE packet of the discovery or the session stage, as its Ethernet type tells: the header, then the tags
/// or the PPP frame. A payload length beyond the packet gets an error line, and the octets that remain are taken.
void dump_pppoe(octets packet, display_context& context, int ethertype);

/// The name of a tag, absent for one without a name.
[[nodiscard]] table_text pppoe_tag_name(int type);

/// Prints the tag list of a discovery packet, end-of-list tags and what follows them included. Text values are cut at
/// 255 octets; octets that a value does not have read as 0; the list ends where nothing is held any more.
void dump_pppoe_tags(octets tags);

}  // namespace ifwatch
