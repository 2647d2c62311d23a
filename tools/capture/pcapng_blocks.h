#pragma once

#include <cstddef>
#include <cstdint>

namespace ifwatch::capture {

// Blocks of the pcapng file format (draft-ietf-opsawg-pcapng), in the byte order that the section's first one tells:
//
//     +------+--------------+------+---------+--------------+
//     | type | total length | body | options | total length |     each part padded to a multiple of 4 octets
//     +------+--------------+------+---------+--------------+
//
//     option: code (2), length (2), value, padded; a code of 0 ends them

enum block_type : std::uint32_t {
    BLOCK_INTERFACE = 1,
    BLOCK_PACKET = 2,  // obsolete
    BLOCK_SIMPLE_PACKET = 3,
    BLOCK_STATISTICS = 5,
    BLOCK_ENHANCED_PACKET = 6,
    BLOCK_SECTION = 0x0A0D0D0A,
};

enum option_code : std::uint16_t {
    OPTION_END = 0,
    OPTION_COMMENT = 1,
    SECTION_APPLICATION = 4,
    INTERFACE_NAME = 2,
    INTERFACE_DESCRIPTION_TEXT = 3,
    INTERFACE_TIME_RESOLUTION = 9,
    INTERFACE_FILTER = 11,
    INTERFACE_TIME_OFFSET = 14,
    PACKET_FLAGS = 2,
    PACKET_DROP_COUNT = 4,
    PACKET_ID = 5,
    STATISTICS_RECEIVED = 4,
    STATISTICS_DROPPED = 5,
};

inline constexpr std::uint32_t BYTE_ORDER_MAGIC = 0x1A2B3C4D;
inline constexpr std::size_t BLOCK_HEADER = 8;
inline constexpr std::size_t BLOCK_TRAILER = 4;
inline constexpr std::size_t OPTION_HEADER = 4;

// Bits of a packet's flags word.
inline constexpr std::uint32_t PACKET_INBOUND = 1;
inline constexpr std::uint32_t PACKET_OUTBOUND = 2;
inline constexpr std::uint32_t PACKET_CRC_ERROR = 1U << 24;
inline constexpr std::uint32_t PACKET_UNALIGNED = 1U << 28;

/// The next multiple of 4.
[[nodiscard]] constexpr std::uint64_t padded(std::uint64_t length) { return (length + 3) / 4 * 4; }

}  // namespace ifwatch::capture
