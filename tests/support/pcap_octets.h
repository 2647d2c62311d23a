#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ifwatch::test {

/// A classic PCAP file put together octet by octet, in either byte order.
class pcap_octets {
public:
    explicit pcap_octets(bool big_endian = false) : big_endian_(big_endian) {}

    pcap_octets& word(std::uint32_t value) { return number(value, 4); }
    pcap_octets& half(std::uint16_t value) { return number(value, 2); }
    pcap_octets& data(std::span<const std::uint8_t> octets) {
        octets_.insert(octets_.end(), octets.begin(), octets.end());
        return *this;
    }

    /// The file header of version 2.4.
    pcap_octets& header(std::uint32_t link_type, std::uint32_t magic = 0xA1B2C3D4) {
        return word(magic).half(2).half(4).word(0).word(0).word(262144).word(link_type);
    }

    /// A packet; `fraction` counts as the magic says. A negative length on the line: that of the octets.
    pcap_octets& packet(std::uint32_t seconds, std::uint32_t fraction, std::span<const std::uint8_t> octets,
                        std::int64_t original = -1) {
        const auto captured = static_cast<std::uint32_t>(octets.size());
        word(seconds).word(fraction).word(captured);
        return word(original < 0 ? captured : static_cast<std::uint32_t>(original)).data(octets);
    }

    [[nodiscard]] const std::vector<std::uint8_t>& octets() const { return octets_; }
    [[nodiscard]] std::string text() const { return {octets_.begin(), octets_.end()}; }

private:
    pcap_octets& number(std::uint32_t value, int octets) {
        for (int i = 0; i < octets; ++i) {
            octets_.push_back(static_cast<std::uint8_t>(value >> (8 * (big_endian_ ? octets - 1 - i : i))));
        }
        return *this;
    }

    bool big_endian_;
    std::vector<std::uint8_t> octets_;
};

}  // namespace ifwatch::test
