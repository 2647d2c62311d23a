#pragma once

#include <cstdint>

namespace ifwatch {

/// The decoder-selection bits of a run: one or two for each one-letter option.
inline constexpr std::uint32_t MODE_HEX = 0x00000001;             // -h, -x: hexadecimal output of frames
inline constexpr std::uint32_t MODE_LAYER2 = 0x00000002;          // -2: B-channel layer 2
inline constexpr std::uint32_t MODE_TEXT = 0x00000004;            // -t: ASCII text
inline constexpr std::uint32_t MODE_IP = 0x00000008;              // -i
inline constexpr std::uint32_t MODE_LAYER3 = 0x00000010;          // -3: B-channel layer 3
inline constexpr std::uint32_t MODE_RAW = 0x00000020;             // -x: raw dump
inline constexpr std::uint32_t MODE_FULL_HEX = 0x00000040;        // -!, -x: hexadecimal output of whole frames
inline constexpr std::uint32_t MODE_FAX = 0x00000080;             // -F, -A
inline constexpr std::uint32_t MODE_PPP = 0x00000100;             // -p
inline constexpr std::uint32_t MODE_ASYNC_HDLC = 0x00000200;      // -a
inline constexpr std::uint32_t MODE_EFT = 0x00000400;             // -e: ETS 300 075 file transfer
inline constexpr std::uint32_t MODE_IPX = 0x00000800;             // -N
inline constexpr std::uint32_t MODE_FRAME_RELAY = 0x00001000;     // -f
inline constexpr std::uint32_t MODE_PPP_X75 = 0x00002000;         // -X: asynchronous PPP over X.75
inline constexpr std::uint32_t MODE_FAX_AT = 0x00004000;          // -A: fax with AT commands
inline constexpr std::uint32_t MODE_RESERVED = 0x00008000;        // set by no option; treated like -a
inline constexpr std::uint32_t MODE_ASYNC_HEX = 0x00010000;       // -a with -h: hexadecimal output per frame
inline constexpr std::uint32_t MODE_ASYNC_FULL_HEX = 0x00020000;  // set by no option
inline constexpr std::uint32_t MODE_LAYER2_ASKED = 0x01000000;    // -2 was given: D-channel layer 2
inline constexpr std::uint32_t MODE_LAYER3_ASKED = 0x02000000;    // -3 was given: D-channel layer 3
inline constexpr std::uint32_t MODE_TEI_FILTER = 0x04000000;      // -T
inline constexpr std::uint32_t MODE_CREF_FILTER = 0x08000000;     // -c
inline constexpr std::uint32_t MODE_DELTA_TIME = 0x80000000;      // -D

}  // namespace ifwatch
