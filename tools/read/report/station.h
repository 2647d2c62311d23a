#pragma once

#include <cstdint>
#include <string>

#include "base/octets.h"

namespace ifwatch::reporting {

/// The hardware address of a station on a LAN, from its first octet on, as a number.
[[nodiscard]] inline std::uint64_t station_at(octets address) {
    return static_cast<std::uint64_t>(address.be16(0)) << 32 | address.be32(2);
}

/// "02:00:01:01:02:03".
[[nodiscard]] std::string station_text(std::uint64_t station);

}  // namespace ifwatch::reporting
