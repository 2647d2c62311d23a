#include "capture/frame_fields.h"

#include <algorithm>
#include <cstddef>

#include "base/byte_order.h"
#include "capture/channel_types.h"

namespace ifwatch::capture {

namespace {

using frame_view = std::span<const std::uint8_t>;

constexpr int ETHERTYPE_IP = 0x0800;
constexpr int ETHERTYPE_ARP = 0x0806;
constexpr int ETHERTYPE_VLAN = 0x8100;
constexpr int MAX_802_3_LENGTH = 1500;
constexpr int PROTOCOL_TCP = 6;
constexpr int PROTOCOL_UDP = 17;

frame_view behind(frame_view frame, std::size_t n) { return frame.subspan(std::min(n, frame.size())); }

void read_ip(frame_view datagram, frame_fields& fields) {
    constexpr std::size_t minimum = 20;
    if (datagram.size() < minimum || datagram[0] >> 4 != 4) {
        return;
    }
    const int protocol = datagram[9];
    fields.ip = frame_fields::ip_header{load_be32(&datagram[12]), load_be32(&datagram[16]), protocol};
    const bool first_fragment = (load_be16(&datagram[6]) & 0x1FFF) == 0;
    const frame_view segment = behind(datagram, static_cast<std::size_t>(datagram[0] & 0x0F) * 4);
    if (first_fragment && segment.size() >= 4 && (protocol == PROTOCOL_TCP || protocol == PROTOCOL_UDP)) {
        fields.ports = frame_fields::port_pair{load_be16(segment.data()), load_be16(&segment[2])};
    }
}

/// RFC 826, of Ethernet's and IPv4's addresses.
void read_arp(frame_view packet, frame_fields& fields) {
    constexpr std::uint8_t ethernet_ip[] = {0x00, 0x01, 0x08, 0x00, 6, 4};
    constexpr std::size_t sender_at = 14;
    if (packet.size() >= sender_at + 4 && std::ranges::equal(packet.first(sizeof ethernet_ip), ethernet_ip)) {
        fields.arp_sender = load_be32(&packet[sender_at]);
    }
}

/// IEEE 802.2; IP follows behind a SNAP header of organisation 0.
void read_llc(frame_view frame, frame_fields& fields) {
    constexpr std::uint8_t snap_ip[] = {0xAA, 0xAA, 0x03, 0x00, 0x00, 0x00, 0x08, 0x00};
    fields.llc = true;
    if (frame.size() >= sizeof snap_ip && std::equal(std::begin(snap_ip), std::end(snap_ip), frame.begin())) {
        read_ip(behind(frame, sizeof snap_ip), fields);
    }
}

bool read_mac(frame_view frame, std::size_t offset, frame_fields& fields) {
    if (frame.size() < offset + 12) {
        return false;
    }
    fields.mac = frame_fields::mac_header{};
    std::copy_n(frame.begin() + static_cast<std::ptrdiff_t>(offset), 6, fields.mac->destination.begin());
    std::copy_n(frame.begin() + static_cast<std::ptrdiff_t>(offset) + 6, 6, fields.mac->source.begin());
    return true;
}

void read_ethernet(frame_view frame, frame_fields& fields) {
    if (!read_mac(frame, 0, fields)) {
        return;
    }
    std::size_t type_at = 12;
    if (frame.size() >= type_at + 6 && load_be16(&frame[type_at]) == ETHERTYPE_VLAN) {
        type_at += 4;
    }
    if (frame.size() < type_at + 2) {
        return;
    }
    const int type = load_be16(&frame[type_at]);
    const frame_view payload = behind(frame, type_at + 2);
    if (type == ETHERTYPE_IP) {
        read_ip(payload, fields);
    } else if (type == ETHERTYPE_ARP) {
        read_arp(payload, fields);
    } else if (type <= MAX_802_3_LENGTH) {
        read_llc(payload, fields);
    }
}

/// AC, FC, the addresses, and a routing information field where bit 7 of the source address is set.
void read_token_ring(frame_view frame, frame_fields& fields) {
    if (!read_mac(frame, 2, fields) || frame.size() <= 14) {
        return;
    }
    const bool routed = (frame[8] & 0x80) != 0;
    read_llc(behind(frame, routed ? 14 + std::size_t{frame[14] & 0x1FU} : 14), fields);
}

void read_tunnel(frame_view frame, frame_fields& fields) { read_ip(behind(frame, 2), fields); }

struct frame_reader {
    int channel_type;
    void (*read)(frame_view frame, frame_fields& fields);
};

constexpr frame_reader READERS[] = {
    {CHANNEL_LAN, read_ethernet},          {CHANNEL_LAN_802_3, read_ethernet}, {CHANNEL_BRIDGED_LAN, read_ethernet},
    {CHANNEL_TOKEN_RING, read_token_ring}, {CHANNEL_TUNNEL, read_tunnel},
};

}  // namespace

std::optional<frame_fields> read_frame_fields(int channel_type, std::span<const std::uint8_t> frame) {
    for (const frame_reader& reader : READERS) {
        if (reader.channel_type == channel_type) {
            frame_fields fields;
            reader.read(frame, fields);
            return fields;
        }
    }
    return std::nullopt;
}

}  // namespace ifwatch::capture
