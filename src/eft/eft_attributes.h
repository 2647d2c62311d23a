#pragma once

#include "base/octets.h"

namespace ifwatch {

// File attribute block (ETS 300 075, file description):
//
//     octet 0   0x30
//     octet 1   length of the attributes that follow
//     octet 2   attribute: identifier, length, value; and so on to the end of the block

inline constexpr int EFT_BLOCK_HEADER = 2;

/// Prints one line for each attribute of a file attribute block and ends the last line. `block.length` is the data
/// given: attributes and their values are cut there. Returns the block's length octet, or -1, with nothing printed,
/// when it is no block: it does not start with 0x30, or it is a checksum attribute, 0x30 0x04 and then an octet that no
/// attribute begins with.
int dump_eft_attributes(octets block);

/// Prints the attributes in the first `count` octets of `attributes` as dump_eft_attributes does; `attributes.length`
/// is the data given.
void dump_eft_attribute_list(octets attributes, int count);

}  // namespace ifwatch
