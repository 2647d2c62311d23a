#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/octets.h"

namespace ifwatch {

/// Asynchronous HDLC reassembly of one direction (RFC 1662).
struct async_state {
    static constexpr int MAXIMUM = 1600;

    std::uint32_t escape = 0;    // 0x20 behind an escape octet
    std::uint32_t fcs = 0xFFFF;  // running FCS-16
    int maximum = MAXIMUM;       // the longest frame kept
    int room = MAXIMUM;          // octets still free
    int count = 0;               // octets stored, FCS included
    std::array<std::uint8_t, MAXIMUM> buffer{};
};

/// PPTP control-message reassembly of one direction.
struct pptp_state {
    static constexpr int MAXIMUM = 256;

    std::array<std::uint8_t, MAXIMUM> buffer{};
    int count = 0;    // octets taken, of which the first MAXIMUM are kept
    int needed = 12;  // octets to hold before the next step
    int phase = 0;    // 0: the fixed header is being collected, 1: the rest

    [[nodiscard]] int kept() const { return std::min(count, MAXIMUM); }
};

/// The protocol part of a trace record, in host order.
struct record_header {
    std::uint32_t timestamp_ms = 0;
    std::uint32_t record_flags = 0;  // bit 0: sent by the router; bit 7: an ATM cell header comes first
    std::uint32_t channel_info = 0;  // bits 31-24 VPI, bits 23-8 VCI, bits 7-0 event code
    std::uint32_t sequence = 0;
};

/// The whole state of the decoders: what the command line selects, what lives from record to record, and the record
/// that is being shown. There is one for a run, or for each interface of a capture.
struct display_context {
    std::int32_t tei_filter = -1;   // -T; -1: none
    std::int32_t cref_filter = -1;  // -c; -1: none
    std::uint32_t mode_flags = 0;
    std::int32_t channel_type = 0;

    std::uint32_t first_time = 0;  // ms; 0: no record shown yet,
    bool zero_is_time = false;     // unless this says that one was, at 0
    std::uint32_t previous_time = 0;
    std::uint32_t expected_sequence = 0;

    std::array<pptp_state, 2> pptp{};
    std::array<async_state, 2> async{};  // the first for records with any flag set
    std::int32_t lapb_mod128 = 0;        // 1 while modulo-128 sequence numbers are in force
    std::uint32_t fax_recv_mode = 0;     // 0: T.30, 1: T.4 page data, 2: error correction
    std::uint32_t fax_xmit_mode = 0;
    std::uint32_t eft_response_command = 0;
    int nesting = 0;  // tunnels and bridged frames entered, at most MAX_NESTING

    std::uint32_t original_length = 0;  // of the frame on the line
    const record_header* header = nullptr;
    octets payload;  // the captured octets; its length is the captured length
};

inline constexpr int MAX_NESTING = 16;

/// Resets the whole context to that of a run that has seen nothing and has no filters.
void init_display_context(display_context& context);

}  // namespace ifwatch
