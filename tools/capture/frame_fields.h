#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace ifwatch::capture {

using mac_address = std::array<std::uint8_t, 6>;

/// What the filters of a trace session, and the rule about what was sent, can ask of a LAN or tunnel frame. Addresses
/// are in host order.
struct frame_fields {
    struct mac_header {
        mac_address destination{};
        mac_address source{};
    };
    struct ip_header {
        std::uint32_t source = 0;
        std::uint32_t destination = 0;
        int protocol = 0;
    };
    struct port_pair {
        int source = 0;
        int destination = 0;
    };

    std::optional<mac_header> mac;
    std::optional<ip_header> ip;
    std::optional<port_pair> ports;           // TCP and UDP, first fragments only
    std::optional<std::uint32_t> arp_sender;  // the protocol address, in ARP for IPv4 on Ethernet
    bool llc = false;                         // an IEEE 802.2 header follows the MAC header
};

/// Reads the fields of a frame as it crosses an interface of this channel type: Ethernet II and IEEE 802.3 (also with
/// an 802.1Q tag), ARP on Ethernet II, Token Ring, and IPv4 in a tunnel. Nothing for channel types that filters do not
/// apply to; what the frame is too short for stays absent.
std::optional<frame_fields> read_frame_fields(int channel_type, std::span<const std::uint8_t> frame);

}  // namespace ifwatch::capture
