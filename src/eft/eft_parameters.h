#pragma once

#include <cstdint>

#include "base/octets.h"

namespace ifwatch {

// Command identifiers that decide how parameters are read.
inline constexpr int EFT_ACCESS = 0x22;
inline constexpr int EFT_DIRECTORY = 0x24;
inline constexpr int EFT_WRITE = 0x2F;
inline constexpr int EFT_RESPONSE_POSITIVE = 0x32;

/// A file description, the one parameter that a T-WRITE may still carry behind its data announcement.
inline constexpr int EFT_FILE_DESCRIPTION = 0x30;

/// What is known of a TDU while its parameters are read.
struct eft_tdu_state {
    int command = 0;                     // command identifier of this TDU
    std::uint32_t response_command = 0;  // the command that the last positive response answered; 0: none
    bool data_announced = false;         // a T-WRITE has told how much data stands behind
    bool ended = false;                  // a directory listing took the rest of the TDU
};

/// One parameter: its identifier, its value, and what stands behind it to the end of the TDU.
struct eft_parameter {
    int identifier = 0;
    octets value;
    octets behind;
};

/// Prints one parameter of a TDU (ETS 300 075), starting a new line for it. One-octet values are read even when the
/// value has no octets; unknown identifiers are shown in hexadecimal. Keeps `state`.
void print_eft_parameter(const eft_parameter& parameter, eft_tdu_state& state);

}  // namespace ifwatch
