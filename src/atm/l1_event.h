#pragma once

#include <string_view>

#include "base/text_sink.h"

namespace ifwatch {

struct display_context;

/// Puts the words of an event: "ACTIVATE", "L1 F7", "CRC [0012]" with the length of the frame; nothing for an unknown
/// code.
void put_l1_event(text_sink& out, const display_context& context);

/// Prints the line of a record that reports an event of the physical layer instead of data: its event code is not 0.
/// `header` is the header text in front, `delta` the delta-time text behind, which carries the line end. The line
/// errors (3 to 6) show the octets they concern and end with a newline of their own. Code 7 takes the layer-1 state
/// from the record flags, which hold nothing else then; an unknown code prints no name.
void dump_l1_event(const display_context& context, std::string_view header, std::string_view delta);

}  // namespace ifwatch
