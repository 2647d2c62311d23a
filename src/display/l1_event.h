#pragma once

#include <cstdint>
#include <string_view>

#include "base/names.h"
#include "base/octets.h"
#include "base/text_sink.h"

namespace ifwatch {

struct record_header;

/// Puts the words of an event: "ACTIVATE", "L1 F7", "CRC [0012]" with the length of the frame; nothing for an unknown
/// code.
void put_l1_event(text_sink& out, const record_header& record, std::uint32_t original_length);

/// Prints the line of a record that reports an event of the physical layer instead of data: its event code is not 0.
/// `header` is the header text in front, `delta` the delta-time text behind, which carries the line end. The line
/// errors (3 to 6) show the original length and the octets of `payload`, and end with a newline of their own. Code 7
/// takes the layer-1 state from the record flags, which hold nothing else then; an unknown code prints no name.
void dump_l1_event(const record_header& record, octets payload, std::uint32_t original_length, std::string_view header,
                   std::string_view delta);

/// What the line of an event of this code begins with when it is a line error (3 to 6), padded to four characters; else
/// nothing.
[[nodiscard]] table_text line_error_name(int event);

}  // namespace ifwatch
