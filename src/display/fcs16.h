#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace ifwatch {

// The frame check sequence of HDLC with 16 bits, RFC 1662 appendix C.2: x^16 + x^12 + x^5 + 1, least significant bit
// first.

inline constexpr std::uint16_t FCS16_START = 0xFFFF;
inline constexpr std::uint16_t FCS16_GOOD = 0xF0B8;  // over a frame and its two FCS octets, low octet first

namespace detail {

using fcs16_table = std::array<std::uint16_t, 256>;

inline constexpr std::size_t FCS16_STRIDE = 8;

/// Table k carries an octet over k further octets of zeros, so that FCS16_STRIDE octets are taken in at once.
consteval std::array<fcs16_table, FCS16_STRIDE> make_fcs16_tables() {
    constexpr std::uint16_t polynomial = 0x8408;
    std::array<fcs16_table, FCS16_STRIDE> tables{};
    for (std::uint16_t octet = 0; octet < 256; ++octet) {
        std::uint16_t value = octet;
        for (int bit = 0; bit < 8; ++bit) {
            value = static_cast<std::uint16_t>((value & 1) != 0 ? (value >> 1) ^ polynomial : value >> 1);
        }
        tables[0][octet] = value;
    }
    for (std::size_t k = 1; k < FCS16_STRIDE; ++k) {
        for (std::size_t octet = 0; octet < 256; ++octet) {
            const std::uint16_t before = tables[k - 1][octet];
            tables[k][octet] = static_cast<std::uint16_t>((before >> 8) ^ tables[0][before & 0xFF]);
        }
    }
    return tables;
}

inline constexpr auto FCS16_TABLES = make_fcs16_tables();

}  // namespace detail

/// The FCS with one more octet taken in.
[[nodiscard]] constexpr std::uint16_t fcs16(std::uint16_t fcs, std::uint8_t octet) {
    return static_cast<std::uint16_t>((fcs >> 8) ^ detail::FCS16_TABLES[0][(fcs ^ octet) & 0xFF]);
}

/// The FCS with a run of octets taken in; the octets of a frame may come in runs of any length. What is sent behind a
/// frame is the complement of the FCS over it.
[[nodiscard]] constexpr std::uint16_t fcs16(std::uint16_t fcs, std::span<const std::uint8_t> run) {
    const auto& table = detail::FCS16_TABLES;
    for (; run.size() >= detail::FCS16_STRIDE; run = run.subspan(detail::FCS16_STRIDE)) {
        const auto low = static_cast<std::uint8_t>(fcs ^ run[0]);
        const auto high = static_cast<std::uint8_t>((fcs >> 8) ^ run[1]);
        fcs = static_cast<std::uint16_t>(table[7][low] ^ table[6][high] ^ table[5][run[2]] ^ table[4][run[3]] ^
                                         table[3][run[4]] ^ table[2][run[5]] ^ table[1][run[6]] ^ table[0][run[7]]);
    }
    for (const std::uint8_t octet : run) {
        fcs = fcs16(fcs, octet);
    }
    return fcs;
}

}  // namespace ifwatch
