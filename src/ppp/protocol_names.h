#pragma once

#include "base/names.h"

namespace ifwatch {

/// The name of a PPP protocol number (RFC 1700, "PPP DLL Protocol Numbers"), "unknown" without one.
[[nodiscard]] table_text ppp_protocol_name(int protocol);

}  // namespace ifwatch
