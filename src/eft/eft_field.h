#pragma once

#include <cstdint>
#include <span>

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

// The pieces that the lines of parameters and attributes are made of.

/// Starts the line of a parameter or attribute: its label in 24 columns.
void print_eft_label(table_text label);

/// Prints the octets of the value as they are, zeros included.
void print_eft_characters(octets value);

/// Prints the octets of the value in hexadecimal.
void print_eft_octets(octets value);

/// The value as a big-endian number modulo 2^32; 0 without octets.
[[nodiscard]] std::uint32_t eft_number(octets value);

/// Prints the texts whose bits are set in `bits`, the first text being bit 0. An absent text prints nothing.
void print_eft_flags(std::span<const table_text> texts, int bits);

}  // namespace ifwatch
