#pragma once

#include "base/octets.h"

namespace ifwatch {

// The fields behind an X.25 packet header, ITU-T X.25 clause 5. Each printer takes what is left of the packet and
// returns the octets it took, which may be more than there are.

/// Prints the called and the calling address, each on a line of its own, when they have digits. With `a_bit` 0 both
/// lengths stand in one octet, with 1 in two.
int dump_x25_addresses(octets field, int a_bit);

/// Prints the rest of the packet as user data; returns 0.
int dump_x25_user_data(octets field);

/// Prints the rest of the packet as the explanation of a diagnostic code.
int dump_x25_diag_explanation(octets field);

/// Prints the registration field: a length and as many octets.
int dump_x25_registration(octets field);

/// Prints `count` semi-octets, high nibble first, from number `first` of the octets on, as far as octets are held.
void print_x25_digits(octets digits, int first, int count);

}  // namespace ifwatch
