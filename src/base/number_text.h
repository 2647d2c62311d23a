#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ifwatch {

// Numbers as text, for writers that have made room before: each is written at `out`, with zeros in front up to `least`
// digits, and what is returned is where it ends. What is behind it there may be spoilt, as far as the room goes.

/// No unsigned number of so many octets has more digits, decimal or hexadecimal.
constexpr std::size_t most_digits(std::size_t octets) { return octets * 5 / 2 + 1; }

/// The sixteen digits of hexadecimal numbers.
constexpr const char* hex_digits(bool capital) { return capital ? "0123456789ABCDEF" : "0123456789abcdef"; }

constexpr char* write_hex(char* out, std::uint32_t value, int least, const char* digits) {
    if (least == 2 && value <= 0xFF) {  // most are octets
        out[0] = digits[value >> 4];
        out[1] = digits[value & 0xF];
        return out + 2;
    }
    const int count = std::max(least, (static_cast<int>(std::bit_width(value | 1U)) + 3) / 4);
    for (int i = count - 1; i >= 0; --i) {
        out[i] = digits[value & 0xF];
        value >>= 4;
    }
    return out + count;
}

/// It takes room for at least DECIMAL_ROOM characters.
char* write_decimal(char* out, std::uint32_t value, int least);
inline constexpr std::size_t DECIMAL_ROOM = 8;

/// The decimal digits of each octet, and behind them how many they are.
extern const std::array<std::array<char, 4>, 256> OCTET_DIGITS;

/// An octet in decimal. It takes room for four characters.
inline char* write_octet(char* out, std::uint8_t value) {
    std::memcpy(out, OCTET_DIGITS[value].data(), OCTET_DIGITS[value].size());
    return out + OCTET_DIGITS[value][3];
}

}  // namespace ifwatch
