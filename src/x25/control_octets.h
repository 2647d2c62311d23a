#pragma once

namespace ifwatch {

// The control octets of the HDLC family: LAPB (ITU-T X.25 clause 2.3), X.75, LAPD (ITU-T Q.921 clause 3.6). An octet
// with bit 0 clear is that of an I frame.

/// The P/F bit of an unnumbered frame, and in modulo 8 of a supervisory one.
inline constexpr int POLL_FINAL = 0x10;

// Supervisory frames: the first octet in modulo 128; in modulo 8 its low four bits.
inline constexpr int RR = 0x01;
inline constexpr int RNR = 0x05;
inline constexpr int REJ = 0x09;

// Unnumbered frames, without the P/F bit.
inline constexpr int UI = 0x03;
inline constexpr int DM = 0x0F;
inline constexpr int SABM = 0x2F;
inline constexpr int DISC = 0x43;
inline constexpr int UA = 0x63;
inline constexpr int SABME = 0x6F;
inline constexpr int FRMR = 0x87;
inline constexpr int XID = 0xAF;

}  // namespace ifwatch
