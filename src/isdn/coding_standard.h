#pragma once

#include "base/names.h"

namespace ifwatch {

// Bits 6-5 of the first contents octet of a capability element (ITU-T Q.931 clause 4.5.5).
inline constexpr table_text CODING_STANDARDS[] = {"CCITT", "International", "National", "Network specific"};

inline constexpr int CODING_STANDARD_CCITT = 0;

[[nodiscard]] constexpr int coding_standard(int octet) { return octet >> 5 & 3; }

}  // namespace ifwatch
