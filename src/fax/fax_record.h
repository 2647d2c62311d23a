#pragma once

#include <cstdint>

#include "base/octets.h"

namespace ifwatch {

struct display_context;

// Event record of the router's fax engine, one trace record on the B-channel:
//
//     octet 0   event type
//     then      what belongs to it: an HDLC frame or page data (type 0), AT text (type 255), mode octets (type 1):
//               received: that of the receiver; sent: that of the transmitter, that of the receiver, non-zero to send

/// Prints one event of a fax call: a frame of the T.30 procedure, page data, a change of modulation, a tone, a lost
/// carrier, or the text of an AT command (only under MODE_FAX_AT). `direction` is non-zero for what the router sends.
/// Frames are read with the framing in force for their direction, which mode changes set in `context`. A frame at 300
/// bit/s of three octets or fewer gets the line "T.30 short message"; unknown event types print nothing; octets that
/// are not held read as 0. The identifications in a frame are turned round in place (ITU-T T.30, T.4).
void dump_fax_record(octets record, std::uint32_t direction, display_context& context);

}  // namespace ifwatch
