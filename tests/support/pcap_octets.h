#pragma once

#include <cstdint>
#include <span>

#include "support/ordered_octets.h"

namespace ifwatch::test {

/// A classic PCAP file put together octet by octet, in either byte order.
class pcap_octets : public ordered_octets<pcap_octets> {
public:
    using ordered_octets::ordered_octets;

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
};

}  // namespace ifwatch::test
