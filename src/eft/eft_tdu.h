#pragma once

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

struct display_context;

// Transfer data unit of the telematic file transfer (ETS 300 075), the user data of one X.25 DATA packet:
//
//     octet 0   command identifier
//     octet 1   length of the parameters; 0xFF: the length stands in octets 2 and 3
//     then      parameters: identifier, length (in the same two forms), value

/// The name of a command; empty where it has none.
[[nodiscard]] table_text eft_command_name(int command);

/// Takes identifier, length and contents off `rest`, which units and parameters both begin with. The contents are cut
/// back to the end of `rest`; their length is negative when the header itself passes it.
octets take_eft_contents(octets& rest);

/// Prints one transfer data unit: the command, and one line for each parameter. A unit that begins with 0x40 is one
/// of telematic control and goes to dump_ets300079. Lengths that pass the data are cut back to its end; nothing behind
/// `tdu.length` is read. Keeps in `context` the command that the last positive response answered.
void dump_eft_tdu(octets tdu, display_context& context);

}  // namespace ifwatch
