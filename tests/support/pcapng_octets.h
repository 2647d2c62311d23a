#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "support/ordered_octets.h"

namespace ifwatch::test {

/// A pcapng file put together octet by octet, in either byte order.
class pcapng_octets : public ordered_octets<pcapng_octets> {
public:
    using ordered_octets::ordered_octets;

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
        const auto total = static_cast<std::uint32_t>(body.octets().size() + 12);
        return word(type).word(total).data(body.octets()).word(total);
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
    [[nodiscard]] pcapng_octets empty() const { return pcapng_octets(big_endian()); }
};

}  // namespace ifwatch::test
