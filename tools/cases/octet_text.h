#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ifwatch::cases {

/// Appends the octets that a line of a case file stands for: hexadecimal pairs, with or without blanks between them;
/// "text" for its ASCII octets, with \" and \\ for a quote and a backslash; XX*N for N times the octet XX. At most
/// `limit` octets may be held in all. Returns what is wrong with the line, or an empty text.
std::string append_octets(std::string_view line, std::size_t limit, std::vector<std::uint8_t>& octets);

/// The line without its comment: from the first # that does not stand inside a "text".
std::string_view without_comment(std::string_view line);

}  // namespace ifwatch::cases
