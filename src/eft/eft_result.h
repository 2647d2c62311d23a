#pragma once

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

struct eft_tdu_state;

/// A result code behind which a reason stands, or a text of the other side's.
inline constexpr int EFT_OTHER_REASON = 0x6F;

/// The name of a result code, or of such a reason; nothing when it has none.
[[nodiscard]] table_text eft_result_name(int code);
[[nodiscard]] table_text eft_reason_name(int code);

/// Prints the result codes and reasons in the value of a Result/Reason parameter (ETS 300 075), each on a line of its
/// own with its label; a code that explains the octets behind it takes them along. In a positive response the command
/// that a code answers is remembered in `state`.
void print_eft_results(octets value, eft_tdu_state& state);

}  // namespace ifwatch
