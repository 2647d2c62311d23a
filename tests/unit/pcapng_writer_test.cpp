// Blocks octet by octet, from the pcapng draft: sections 3.1 (block structure), 3.5 (options), 4.1 to 4.3 and 4.6.

#include "capture/pcapng_writer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

namespace ifwatch::capture {
namespace {

// Integers of a file, in the byte order of this machine, which the section header tells.
template <class Integer>
std::string native(Integer value) {
    std::string octets(sizeof value, '\0');
    std::memcpy(octets.data(), &value, sizeof value);
    return octets;
}
std::string u16(std::uint16_t value) { return native(value); }
std::string u32(std::uint32_t value) { return native(value); }
std::string u64(std::uint64_t value) { return native(value); }

std::string option(std::uint16_t code, std::uint16_t length, const std::string& padded_value) {
    return u16(code) + u16(length) + padded_value;
}
const std::string END_OF_OPTIONS(4, '\0');

std::string text_of(const block_buffer& block) { return {block.begin(), block.end()}; }

/// A block of this type around its body, whose length is a multiple of 4.
std::string block_of(std::uint32_t type, const std::string& body) {
    EXPECT_EQ(body.size() % 4, 0U);
    const auto total = static_cast<std::uint32_t>(body.size() + 12);
    return u32(type) + u32(total) + body + u32(total);
}

TEST(pcapng, section_header) {
    block_buffer block;
    build_section_header(block, "watch 1.0");
    EXPECT_EQ(text_of(block),
              block_of(0x0A0D0D0A, u32(0x1A2B3C4D) + u16(1) + u16(0) + std::string(8, '\xFF') +
                                       option(4, 9, std::string("watch 1.0\0\0\0", 12)) + END_OF_OPTIONS));
}

TEST(pcapng, section_header_without_an_option_has_no_end_of_options) {
    block_buffer block;
    build_section_header(block, "");
    EXPECT_EQ(text_of(block), block_of(0x0A0D0D0A, u32(0x1A2B3C4D) + u16(1) + u16(0) + std::string(8, '\xFF')));
    EXPECT_EQ(block.size(), 28U);
}

TEST(pcapng, interface_description) {
    block_buffer block;
    build_interface_description(block, {.link_type = 203,
                                        .snapshot_length = 96,
                                        .name = "watch-2100",
                                        .description = "Interface 2100: ISDN",
                                        .filter = "-B ::6",
                                        .comment = "type 0"});
    EXPECT_EQ(text_of(block),
              block_of(1, u16(203) + u16(0) + u32(96) + option(1, 6, std::string("type 0\0\0", 8)) +
                              option(2, 10, std::string("watch-2100\0\0", 12)) + option(3, 20, "Interface 2100: ISDN") +
                              option(9, 1, std::string("\x03\0\0\0", 4)) + option(11, 7, std::string("\0-B ::6\0", 8)) +
                              END_OF_OPTIONS));
}

TEST(pcapng, interface_description_leaves_empty_texts_out) {
    block_buffer block;
    build_interface_description(block, {.link_type = 1, .name = "", .description = "", .filter = "", .comment = ""});
    EXPECT_EQ(text_of(block),
              block_of(1, u16(1) + u16(0) + u32(0) + option(9, 1, std::string("\x03\0\0\0", 4)) + END_OF_OPTIONS));
}

TEST(pcapng, packet_with_everything) {
    const std::array<std::uint8_t, 3> prefix = {1, 2, 3};
    const std::array<std::uint8_t, 4> data = {0xA1, 0xA2, 0xA3, 0xA4};
    block_buffer block;
    build_enhanced_packet(block, {.interface_id = 1,
                                  .time_ms = 0x123456789ABCDEF,
                                  .prefix = prefix,
                                  .data = data,
                                  .original_length = 1503,
                                  .flags = PACKET_INBOUND | PACKET_CRC_ERROR,
                                  .lost = 5,
                                  .id = 0x1234567890ABCDEF,
                                  .comment = "why?!"});
    EXPECT_EQ(text_of(block),
              block_of(6, u32(1) + u32(0x01234567) + u32(0x89ABCDEF) + u32(7) + u32(1503) +
                              std::string("\1\2\3\xA1\xA2\xA3\xA4\0", 8) + option(1, 5, std::string("why?!\0\0\0", 8)) +
                              option(2, 4, u32(0x01000001)) + option(4, 8, u64(5)) +
                              option(5, 8, u64(0x1234567890ABCDEF)) + END_OF_OPTIONS));
}

TEST(pcapng, packet_with_nothing_to_tell) {
    const std::array<std::uint8_t, 4> data = {9, 8, 7, 6};
    block_buffer block;
    build_enhanced_packet(
        block, {.prefix = {}, .data = data, .original_length = 4, .flags = PACKET_OUTBOUND, .id = {}, .comment = ""});
    EXPECT_EQ(text_of(block), block_of(6, u32(0) + u32(0) + u32(0) + u32(4) + u32(4) + "\x09\x08\x07\x06" +
                                              option(2, 4, u32(2)) + END_OF_OPTIONS));
}

TEST(pcapng, packets_of_every_length_are_padded_with_zeros) {
    const std::array<std::uint8_t, 9> data = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    for (std::size_t length = 1; length <= data.size(); ++length) {
        block_buffer block;
        const auto captured = static_cast<std::uint32_t>(length);
        build_enhanced_packet(block, {.prefix = {},
                                      .data = std::span(data).first(length),
                                      .original_length = captured,
                                      .flags = 1,
                                      .id = {},
                                      .comment = ""});
        std::string padded(length, '\xFF');
        padded.resize((length + 3) / 4 * 4);
        EXPECT_EQ(text_of(block), block_of(6, u32(0) + u32(0) + u32(0) + u32(captured) + u32(captured) + padded +
                                                  option(2, 4, u32(1)) + END_OF_OPTIONS));
    }
}

TEST(pcapng, a_text_longer_than_an_option_is_cut) {
    const std::array<std::uint8_t, 4> data = {1, 2, 3, 4};
    const std::string comment(70000, 'c');
    block_buffer block;
    build_enhanced_packet(block,
                          {.prefix = {}, .data = data, .original_length = 4, .flags = 1, .id = {}, .comment = comment});
    EXPECT_EQ(text_of(block), block_of(6, u32(0) + u32(0) + u32(0) + u32(4) + u32(4) + "\1\2\3\4" +
                                              option(1, 0xFFFF, std::string(0xFFFF, 'c') + std::string(1, '\0')) +
                                              option(2, 4, u32(1)) + END_OF_OPTIONS));
}

TEST(pcapng, interface_statistics) {
    block_buffer block;
    build_interface_statistics(block, {.interface_id = 0, .time_ms = 0x100000002, .received = 70000, .lost = 3});
    EXPECT_EQ(text_of(block),
              block_of(5, u32(0) + u32(1) + u32(2) + option(4, 8, u64(70000)) + option(5, 8, u64(3)) + END_OF_OPTIONS));
}

TEST(pcapng, a_buffer_is_used_again) {
    block_buffer fresh;
    block_buffer used;
    build_section_header(used, std::string(500, 'x'));
    build_interface_statistics(used, {.received = 1});
    build_interface_statistics(fresh, {.received = 1});
    EXPECT_EQ(used, fresh);
}

}  // namespace
}  // namespace ifwatch::capture
