#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "capture/pcapng_blocks.h"

namespace ifwatch::capture {

// Writes blocks as pcapng_blocks.h describes them, in the byte order of this machine. Every function below replaces
// what `block` holds by one whole block. A buffer that is used again and again soon needs no more memory.

using block_buffer = std::vector<std::uint8_t>;

/// The interface that packets come from. Empty texts are left out. Its time stamps are in milliseconds.
struct pcapng_interface {
    std::uint16_t link_type = 0;
    std::uint32_t snapshot_length = 0;  // 0: whole frames
    std::string name;
    std::string description;
    std::string filter;
    std::string comment;
};

struct pcapng_packet {
    std::uint32_t interface_id = 0;  // interfaces count from 0 in the order of their blocks
    std::uint64_t time_ms = 0;
    std::span<const std::uint8_t> prefix;  // what stands before the data, part of the packet
    std::span<const std::uint8_t> data;
    std::uint32_t original_length = 0;  // with the prefix
    std::uint32_t flags = 0;
    std::uint64_t lost = 0;  // packets between the one before and this; 0 is left out
    std::optional<std::uint64_t> id;
    std::string_view comment;
    std::string_view second_comment = {};
};

/// What an interface gave up to `time_ms`.
struct pcapng_statistics {
    std::uint32_t interface_id = 0;
    std::uint64_t time_ms = 0;
    std::uint64_t received = 0;
    std::uint64_t lost = 0;
};

/// The block that begins a file.
void build_section_header(block_buffer& block, std::string_view application);
void build_interface_description(block_buffer& block, const pcapng_interface& described);
void build_enhanced_packet(block_buffer& block, const pcapng_packet& packet);
void build_interface_statistics(block_buffer& block, const pcapng_statistics& counts);

}  // namespace ifwatch::capture
