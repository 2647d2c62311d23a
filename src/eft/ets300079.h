#pragma once

#include "base/octets.h"

namespace ifwatch {

// Telematic control message (ETS 300 079):
//
//     octets 0-1   0x40 0x9E
//     octet 2      message code
//     octet 3      length of the parameters
//     then         parameters, header either one octet: identifier (7-4), length (3-0)
//                  or three: 0xFF, identifier, length

/// Prints a telematic control message on the current line: its name, and one line for each parameter. Data that is no
/// such message prints a newline only; a length that passes the data leaves the line open. A parameter that passes the
/// message ends the walk. Returns `data.length`.
int dump_ets300079(octets data);

}  // namespace ifwatch
