#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

// LAPB and X.75 frame header, ITU-T X.25 clause 2.3 and X.75 clause 2.3, bit 7 on the left:
//
//     address   one octet (bit 0 set), or two octets as LAPD has them (bit 0 clear)
//     control   modulo 8:     I  N(R) P N(S) 0      S  N(R) P/F .. 01      U  ... P/F .. 11
//               modulo 128:   I  N(S) 0, N(R) P     S  ....01, N(R) P/F    U  one octet
//
// SABME opens modulo 128, SABM and DISC return to modulo 8; no other frame changes it. While modulo 128 is in force the
// sequence numbers and P/F of every frame, U frames included, are read from the octet behind the control octet.

/// The fields of a link header, as read from the frame. `address` is printed with its low 11 bits.
struct lapb_header {
    int address = 0;
    int control = 0;
    int nr = 0;
    int ns = 0;
    int poll_final = 0;
};

/// Reads a link header; octets that are not held count as 0.
[[nodiscard]] lapb_header read_lapb_header(octets frame, bool modulo128);

/// Prints the layer-2 line of a LAPB or X.75 frame, with the information field of an FRMR or XID frame, and follows
/// the modulus in `context`. Returns the octets of the layer-2 header: 2, or 3 for an I or S frame in modulo 128 (the
/// second octet of a two-octet address is not counted), and for FRMR and XID at least the whole frame. Octets that are
/// not held read as 0.
int dump_lapb_frame(octets frame, display_context& context);

/// Prints the same line from fields that the caller has read. The information field of FRMR and XID stands at
/// `frame` + 2. An unknown control octet gets the line "Illegal B-Channel Message".
int print_lapb_control(octets frame, const lapb_header& header, display_context& context);

}  // namespace ifwatch
