#pragma once

#include <optional>
#include <string>

#include "capture/packet_record.h"

namespace ifwatch::sim {

/// The rule that a text is: none, all, a MAC address or an IPv4 address. Nothing for any other text.
[[nodiscard]] std::optional<capture::sent_rule> parse_sent_rule(const std::string& text);

}  // namespace ifwatch::sim
