#pragma once

#include "base/octets.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

// Packet types, ITU-T X.25 table 5-2.
inline constexpr int X25_CALL = 0x0B;
inline constexpr int X25_CALL_ACCEPTED = 0x0F;
inline constexpr int X25_CLEAR = 0x13;
inline constexpr int X25_CLEAR_CONFIRMATION = 0x17;
inline constexpr int X25_RESET = 0x1B;
inline constexpr int X25_RESET_CONFIRMATION = 0x1F;
inline constexpr int X25_DIAGNOSTIC = 0xF1;
inline constexpr int X25_RESTART = 0xFB;
inline constexpr int X25_RESTART_CONFIRMATION = 0xFF;

inline constexpr int X25_RECEIVE_READY = 0x01;
inline constexpr int X25_RECEIVE_NOT_READY = 0x05;

/// The header of a packet. `format` is the general format identifier, of which bits 1-0 tell the modulus.
struct x25_header {
    int format = 0;
    int channel = 0;
    int type = 0;  // of a packet for flow control without its P(R)
    int mask = 7;  // of sequence numbers
    bool data = false;
    bool flow_control = false;
    bool more = false;
    int pr = 0;
    int ps = 0;
    int length = 3;  // of the header
};

/// Reads the header of an X.25 packet; octets that are not held count as 0.
[[nodiscard]] x25_header read_x25_header(octets packet);

/// A packet that is X.25 beyond doubt: it sets up or clears a call, or restarts, and all its lengths are in order.
[[nodiscard]] bool is_surely_x25(octets packet, const x25_header& header);

/// What CALL REQUEST and CALL ACCEPTED say of a call.
struct x25_call_fields {
    short_text called;
    short_text calling;
    bool fast_select = false;
    int window_from_called = 0;  // 0: not told
    int window_from_calling = 0;
};

/// Reads the addresses and facilities behind the header of such a packet; damaged ones as far as they are held.
[[nodiscard]] x25_call_fields read_x25_call_fields(octets packet, const x25_header& header);

}  // namespace ifwatch::reporting
