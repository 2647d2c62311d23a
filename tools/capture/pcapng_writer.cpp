#include "capture/pcapng_writer.h"

#include <concepts>
#include <cstring>

namespace ifwatch::capture {

namespace {

constexpr std::uint64_t UNKNOWN_LENGTH = ~std::uint64_t{0};
constexpr std::uint8_t MILLISECONDS = 3;    // a negative power of 10
constexpr std::uint8_t FILTER_AS_TEXT = 0;  // the octet before a filter's text
constexpr std::size_t LENGTH_OFFSET = 4;
constexpr std::size_t LONGEST_OPTION = 0xFFFF;

class block_writer {
public:
    block_writer(block_buffer& block, std::uint32_t type) : block_(block) {
        block_.clear();
        put(type);
        put(std::uint32_t{0});  // the total length, when it is known
    }

    /// An integer as it lies in memory.
    template <std::unsigned_integral Integer>
    void put(Integer value) {
        const std::size_t at = block_.size();
        block_.resize(at + sizeof value);
        std::memcpy(&block_[at], &value, sizeof value);
    }

    void put_octets(std::span<const std::uint8_t> octets) { block_.insert(block_.end(), octets.begin(), octets.end()); }
    void pad() { block_.resize(static_cast<std::size_t>(padded(block_.size()))); }

    /// The upper half first, whatever the byte order.
    void put_time(std::uint64_t time) {
        put(static_cast<std::uint32_t>(time >> 32));
        put(static_cast<std::uint32_t>(time));
    }

    template <std::unsigned_integral Integer>
    void put_option(option_code code, Integer value) {
        begin_option(code, sizeof value);
        put(value);
        pad();
    }

    /// An empty text is left out, an overlong one is cut.
    void put_text_option(option_code code, std::string_view text) {
        if (!text.empty()) {
            text = text.substr(0, LONGEST_OPTION);
            begin_option(code, text.size());
            block_.insert(block_.end(), text.begin(), text.end());
            pad();
        }
    }

    void finish() {
        if (has_options_) {
            begin_option(OPTION_END, 0);
        }
        const auto total = static_cast<std::uint32_t>(block_.size() + sizeof(std::uint32_t));
        put(total);
        std::memcpy(&block_[LENGTH_OFFSET], &total, sizeof total);
    }

private:
    void begin_option(option_code code, std::size_t length) {
        put(static_cast<std::uint16_t>(code));
        put(static_cast<std::uint16_t>(length));
        has_options_ = true;
    }

    block_buffer& block_;
    bool has_options_ = false;
};

}  // namespace

void build_section_header(block_buffer& block, std::string_view application) {
    block_writer writer(block, BLOCK_SECTION);
    writer.put(BYTE_ORDER_MAGIC);
    writer.put(std::uint16_t{1});  // version 1.0
    writer.put(std::uint16_t{0});
    writer.put(UNKNOWN_LENGTH);
    writer.put_text_option(SECTION_APPLICATION, application);
    writer.finish();
}

void build_interface_description(block_buffer& block, const pcapng_interface& described) {
    block_writer writer(block, BLOCK_INTERFACE);
    writer.put(described.link_type);
    writer.put(std::uint16_t{0});  // reserved
    writer.put(described.snapshot_length);
    writer.put_text_option(OPTION_COMMENT, described.comment);
    writer.put_text_option(INTERFACE_NAME, described.name);
    writer.put_text_option(INTERFACE_DESCRIPTION_TEXT, described.description);
    writer.put_option(INTERFACE_TIME_RESOLUTION, MILLISECONDS);
    if (!described.filter.empty()) {
        writer.put_text_option(INTERFACE_FILTER, static_cast<char>(FILTER_AS_TEXT) + described.filter);
    }
    writer.finish();
}

void build_enhanced_packet(block_buffer& block, const pcapng_packet& packet) {
    block_writer writer(block, BLOCK_ENHANCED_PACKET);
    writer.put(packet.interface_id);
    writer.put_time(packet.time_ms);
    writer.put(static_cast<std::uint32_t>(packet.prefix.size() + packet.data.size()));
    writer.put(packet.original_length);
    writer.put_octets(packet.prefix);
    writer.put_octets(packet.data);
    writer.pad();
    writer.put_text_option(OPTION_COMMENT, packet.comment);
    writer.put_text_option(OPTION_COMMENT, packet.second_comment);
    writer.put_option(PACKET_FLAGS, packet.flags);
    if (packet.lost != 0) {
        writer.put_option(PACKET_DROP_COUNT, packet.lost);
    }
    if (packet.id) {
        writer.put_option(PACKET_ID, *packet.id);
    }
    writer.finish();
}

void build_interface_statistics(block_buffer& block, const pcapng_statistics& counts) {
    block_writer writer(block, BLOCK_STATISTICS);
    writer.put(counts.interface_id);
    writer.put_time(counts.time_ms);
    writer.put_option(STATISTICS_RECEIVED, counts.received);
    writer.put_option(STATISTICS_DROPPED, counts.lost);
    writer.finish();
}

}  // namespace ifwatch::capture
