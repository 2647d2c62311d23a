#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "capture/packet_format.h"
#include "capture/pcapng_blocks.h"
#include "capture/pcapng_time.h"

namespace ifwatch::capture {

/// Whether a stream begins as a pcapng file does.
[[nodiscard]] bool is_pcapng(byte_stream& stream);

/// What pcapng_blocks.h describes: sections of either byte order, each with interfaces and their packets. All other
/// blocks are passed over.
class pcapng_format : public packet_format {
public:
    static constexpr std::size_t MAX_INTERFACES = 4096;  // of a section

    using packet_format::packet_format;

    packet_read next(captured_packet& packet) override;
    [[nodiscard]] const capture_interface& interface_of(const captured_packet& packet) const override;
    [[nodiscard]] std::size_t interface_count() const override { return interfaces_.size(); }

private:
    struct known_interface {
        capture_interface described;
        std::uint32_t snapshot_length = 0;  // 0: none
        std::uint32_t check_sequence = 0;   // octets at the end of each packet
        time_scale times;
    };

    /// The block that is being read.
    struct open_block {
        std::uint64_t offset = 0;
        std::uint32_t type = 0;
        std::uint32_t total = 0;
        std::span<std::uint8_t> body;  // as far as it is held
        bool whole = true;             // all of it is

        [[nodiscard]] std::uint32_t body_length() const { return total - MIN_BLOCK; }
    };

    /// Where the octets of a packet stand in its block.
    struct packet_layout {
        std::uint32_t front = 0;  // octets of the body in front of them
        std::uint32_t captured = 0;
        std::uint32_t original = 0;
        std::uint32_t check_sequence = 0;
    };

    static constexpr std::uint32_t MIN_BLOCK = BLOCK_HEADER + BLOCK_TRAILER;

    packet_read open(open_block& block);
    bool read_byte_order(const open_block& block);
    bool hold_body(open_block& block);
    bool check_trailer(const open_block& block, std::span<const std::uint8_t> trailer);
    bool take(open_block& block);
    bool read_section(const open_block& block);
    bool read_interface(const open_block& block);
    bool read_packet(open_block& block, captured_packet& packet);
    bool find_packet(const open_block& block, captured_packet& packet, packet_layout& layout);
    bool find_simple_packet(const open_block& block, packet_layout& layout);
    bool find_interface(const open_block& block, std::uint32_t id, const known_interface*& found);
    bool read_large_packet(open_block& block, packet_layout& layout, captured_packet& packet);
    bool read_packet_options(const open_block& block, std::span<const std::uint8_t> options, packet_layout& layout,
                             captured_packet& packet);
    bool skip_rest(const open_block& block, std::uint64_t count);
    bool fail(const open_block& block, const std::string& reason);

    template <class Take>
    bool read_options(const open_block& block, std::span<const std::uint8_t> options, Take take_option);

    [[nodiscard]] std::uint16_t half(const std::uint8_t* at) const;
    [[nodiscard]] std::uint32_t word(const std::uint8_t* at) const;
    [[nodiscard]] std::uint64_t long_word(const std::uint8_t* at) const;

    bool big_endian_ = false;
    std::uint32_t sections_ = 0;
    std::vector<known_interface> interfaces_;
    capture_interface none_;
    std::uint64_t number_ = 0;         // of the packets so far
    std::uint64_t behind_ = 0;         // octets of the block that was read last, still in front
    std::vector<std::uint8_t> aside_;  // the first octets of a packet that does not fit the stream's buffer
    std::string comment_;              // of such a packet
};

}  // namespace ifwatch::capture
