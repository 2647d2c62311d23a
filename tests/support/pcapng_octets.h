#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ifwatch::test {

/// A pcapng file put together octet by octet, in either byte order.
class pcapng_octets {
public:
    explicit pcapng_octets(bool big_endian = false) : big_endian_(big_endian) {}

    pcapng_octets& half(std::uint32_t value) { return number(value, 2); }
    pcapng_octets& word(std::uint32_t value) { return number(value, 4); }
    pcapng_octets& long_word(std::uint64_t value) { return number(value, 8); }

    /// Octets padded with zeros to a multiple of 4.
    pcapng_octets& padded(std::span<const std::uint8_t> octets) {
        octets_.insert(octets_.end(), octets.begin(), octets.end());
        octets_.resize((octets_.size() + 3) / 4 * 4);
        return *this;
    }

    pcapng_octets& option(std::uint16_t code, std::span<const std::uint8_t> value) {
        return half(code).half(static_cast<std::uint16_t>(value.size())).padded(value);
    }
    pcapng_octets& option(std::uint16_t code, std::string_view value) {
        return option(code, std::vector<std::uint8_t>(value.begin(), value.end()));
    }
    pcapng_octets& word_option(std::uint16_t code, std::uint32_t value) { return half(code).half(4).word(value); }
    pcapng_octets& long_option(std::uint16_t code, std::uint64_t value) { return half(code).half(8).long_word(value); }
    pcapng_octets& end_options() { return word(0); }

    /// Puts a block of this type around what `body` has put together, in the same byte order.
    pcapng_octets& block(std::uint32_t type, const pcapng_octets& body) {
        const auto total = static_cast<std::uint32_t>(body.octets_.size() + 12);
        word(type).word(total);
        octets_.insert(octets_.end(), body.octets_.begin(), body.octets_.end());
        return word(total);
    }

    pcapng_octets& section() { return block(0x0A0D0D0A, empty().word(0x1A2B3C4D).half(1).half(0).long_word(~0ULL)); }
    pcapng_octets& interface(std::uint16_t link_type, std::uint32_t snapshot_length = 0) {
        return block(1, empty().half(link_type).half(0).word(snapshot_length));
    }
    /// An interface with one option.
    pcapng_octets& interface(std::uint16_t link_type, std::uint16_t code, std::span<const std::uint8_t> value) {
        return block(1, empty().half(link_type).half(0).word(0).option(code, value).end_options());
    }
    pcapng_octets& packet(std::uint32_t interface_id, std::uint64_t time, std::span<const std::uint8_t> octets) {
        return block(6, packet_body(interface_id, time, octets));
    }

    /// The body of an enhanced packet, for options to be put behind.
    [[nodiscard]] pcapng_octets packet_body(std::uint32_t interface_id, std::uint64_t time,
                                            std::span<const std::uint8_t> octets) const {
        const auto length = static_cast<std::uint32_t>(octets.size());
        pcapng_octets body = empty();
        body.word(interface_id).word(static_cast<std::uint32_t>(time >> 32)).word(static_cast<std::uint32_t>(time));
        return body.word(length).word(length).padded(octets);
    }
    [[nodiscard]] pcapng_octets empty() const { return pcapng_octets(big_endian_); }

    [[nodiscard]] const std::vector<std::uint8_t>& octets() const { return octets_; }
    [[nodiscard]] std::string text() const { return {octets_.begin(), octets_.end()}; }

private:
    pcapng_octets& number(std::uint64_t value, int octets) {
        for (int i = 0; i < octets; ++i) {
            octets_.push_back(static_cast<std::uint8_t>(value >> (8 * (big_endian_ ? octets - 1 - i : i))));
        }
        return *this;
    }

    bool big_endian_;
    std::vector<std::uint8_t> octets_;
};

}  // namespace ifwatch::test
