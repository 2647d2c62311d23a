#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "capture/packet_record.h"

namespace ifwatch::capture {

/// Reads a MAC address: twelve hexadecimal digits, with or without colons, dashes or points between them.
bool parse_mac(std::string_view text, mac_address& address);

/// The rule that a text is: none, all, a MAC address or an IPv4 address. Nothing for any other text.
[[nodiscard]] std::optional<sent_rule> parse_sent_rule(const std::string& text);

}  // namespace ifwatch::capture
