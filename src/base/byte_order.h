#pragma once

#include <cstdint>

namespace ifwatch {

// Integers as they lie in messages and files, for what writes them or reads them at fixed places. What a decoder reads
// of a frame goes through base/octets.h.

[[nodiscard]] constexpr std::uint16_t swap16(std::uint16_t value) {
    return static_cast<std::uint16_t>(value >> 8 | value << 8);
}
[[nodiscard]] constexpr std::uint32_t swap32(std::uint32_t value) {
    return static_cast<std::uint32_t>(swap16(static_cast<std::uint16_t>(value))) << 16 |
           swap16(static_cast<std::uint16_t>(value >> 16));
}

/// Big-endian; little-endian where the name says le.
constexpr void store_be16(std::uint8_t* at, std::uint16_t value) {
    at[0] = static_cast<std::uint8_t>(value >> 8);
    at[1] = static_cast<std::uint8_t>(value);
}
constexpr void store_be32(std::uint8_t* at, std::uint32_t value) {
    store_be16(at, static_cast<std::uint16_t>(value >> 16));
    store_be16(at + 2, static_cast<std::uint16_t>(value));
}
[[nodiscard]] constexpr std::uint16_t load_be16(const std::uint8_t* at) {
    return static_cast<std::uint16_t>(at[0] << 8 | at[1]);
}
[[nodiscard]] constexpr std::uint32_t load_be32(const std::uint8_t* at) {
    return static_cast<std::uint32_t>(load_be16(at)) << 16 | load_be16(at + 2);
}
[[nodiscard]] constexpr std::uint32_t load_le32(const std::uint8_t* at) { return swap32(load_be32(at)); }

}  // namespace ifwatch
