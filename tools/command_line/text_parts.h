#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ifwatch {

/// The text in single quotes, for a message.
inline std::string in_quotes(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 2);
    result += '\'';
    result += text;
    result += '\'';
    return result;
}

/// The text with every control character made visible, such as \n and \x07, so that it stays on one line.
inline std::string on_one_line(std::string_view text) {
    constexpr std::string_view hex_digits = "0123456789abcdef";
    std::string line;
    for (const char character : text) {
        const auto octet = static_cast<unsigned char>(character);
        if (character == '\n') {
            line += "\\n";
        } else if (octet < 0x20 || octet == 0x7F) {
            line += "\\x";
            line += hex_digits[octet >> 4];
            line += hex_digits[octet & 0xF];
        } else {
            line += character;
        }
    }
    return line;
}

/// A whole number within bounds, decimal or hexadecimal behind 0x. Nothing may stand behind it.
inline std::optional<std::int64_t> parse_number(std::string_view text, std::int64_t minimum, std::int64_t maximum) {
    const bool negative = text.starts_with('-');
    text.remove_prefix(negative ? 1 : 0);
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(hexadecimal ? 2 : 0);
    std::uint32_t magnitude = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, problem] = std::from_chars(text.data(), end, magnitude, hexadecimal ? 16 : 10);
    if (problem != std::errc{} || stop != end) {
        return std::nullopt;
    }
    const std::int64_t value = negative ? -static_cast<std::int64_t>(magnitude) : std::int64_t{magnitude};
    if (value < minimum || value > maximum) {
        return std::nullopt;
    }
    return value;
}

}  // namespace ifwatch
