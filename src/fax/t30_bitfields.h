#pragma once

#include <string_view>

#include "base/octets.h"

namespace ifwatch {

/// Prints one line for each capability of a DIS or DTC (`dcs` false) or each choice of a DCS or CTC (`dcs` true) in
/// the facsimile information field `fif`. Flags print when they are set, fields of several bits always; a clear
/// extension bit ends the walk, and so does the end of the field (ITU-T T.30, table 2).
void dump_t30_bitfields(octets fif, bool dcs);

/// The rate that the facsimile information field of a DCS chooses, with its modulation; empty where it is too short.
[[nodiscard]] std::string_view t30_rate_name(octets dcs);

/// The value of the `width` bits (at most 8) from `bit_index` on, 0 being the least significant bit of the first
/// octet; a field never spans two octets. -1 when the field is wider, or its index beyond 7 bits for each octet that
/// `field` has.
[[nodiscard]] int get_bitfield(octets field, int bit_index, int width);

}  // namespace ifwatch
