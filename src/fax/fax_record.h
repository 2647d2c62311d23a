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

// Event types that change what later records are.
inline constexpr int FAX_EVENT_DATA = 0;
inline constexpr int FAX_EVENT_MODE = 1;
inline constexpr int FAX_EVENT_CED = 2;
inline constexpr int FAX_EVENT_CNG = 3;  // received: the carrier is lost
inline constexpr int FAX_EVENT_FCS_ERROR = 6;

// How the data of one direction are framed.
inline constexpr std::uint32_t FAX_FRAMING_T30 = 0;   // HDLC at 300 bit/s
inline constexpr std::uint32_t FAX_FRAMING_PAGE = 1;  // page data without error correction
inline constexpr std::uint32_t FAX_FRAMING_ECM = 2;   // HDLC at the page-data rate

/// The framing that a mode octet selects.
[[nodiscard]] std::uint32_t fax_framing(int mode_octet);

/// Prints one event of a fax call: a frame of the T.30 procedure, page data, a change of modulation, a tone, a lost
/// carrier, or the text of an AT command (only under MODE_FAX_AT). `direction` is non-zero for what the router sends.
/// Frames are read with the framing in force for their direction, which mode changes set in `context`. A frame at 300
/// bit/s of three octets or fewer gets the line "T.30 short message"; unknown event types print nothing; octets that
/// are not held read as 0. The identifications in a frame are turned round in place (ITU-T T.30, T.4).
void dump_fax_record(octets record, std::uint32_t direction, display_context& context);

}  // namespace ifwatch
