#pragma once

#include "base/octets.h"

namespace ifwatch {

struct eft_tdu_state;

/// Prints the result codes and reasons in the value of a Result/Reason parameter (ETS 300 075), each on a line of its
/// own with its label; a code that explains the octets behind it takes them along. In a positive response the command
/// that a code answers is remembered in `state`.
void print_eft_results(octets value, eft_tdu_state& state);

}  // namespace ifwatch
