#pragma once

#include <cstdint>
#include <optional>

namespace ifwatch::capture {

// Link types of the tcpdump.org list that are written.
enum known_link_type : std::uint16_t {
    LINK_ETHERNET = 1,
    LINK_TOKEN_RING = 6,
    LINK_PPP = 9,
    LINK_RAW_IP = 101,
    LINK_CISCO_HDLC = 104,
    LINK_FRAME_RELAY = 107,
    LINK_SUNATM = 123,
    LINK_USER0 = 147,  // frames of no named kind: the analyser's user decides what they are
    LINK_LAPD_WITH_DIRECTION = 177,
    LINK_LAPD = 203,
    LINK_PPP_WITH_DIRECTION = 204,
    LINK_LAPB_WITH_DIRECTION = 207,
    LINK_EXPORTED_PDU = 252,  // frames that name their dissector
};

/// What stands in front of the frame in a packet.
enum class link_header : std::uint8_t {
    NONE,
    DIRECTION,       // one octet: 0 received, otherwise sent
    LINUX_LAPD,      // 16 octets, as LINUX_COOKED
    SUNATM,          // 4 octets: bit 7 sent, bits 3-0 kind of traffic; VPI; VCI (2)
    LINUX_COOKED,    // 16 octets, big-endian: packet type (2; 4: sent), ARPHRD (2), address length (2), address (8),
                     // EtherType (2)
    LINUX_COOKED_2,  // 20 octets: EtherType (2), reserved (2), interface (4), ARPHRD (2), packet type (1), address
                     // length (1), address (8)
    EXPORTED_PDU,    // tags of a code (2), a length (2) and as many octets, up to a tag of code 0
};

/// A link type of the tcpdump.org list, and the interface of the router that carries such frames.
struct link_kind {
    std::uint32_t link_type;
    link_header header;
    const char* name;
    std::optional<int> channel_type;  // nothing: the packets of it may be any
    const char* viewer_options;       // that show every layer of it
};

/// The kind of a link type; nullptr when it is not known.
[[nodiscard]] const link_kind* find_link_kind(std::uint32_t link_type);

/// How the frames of an interface are written to pcapng, which tells their direction beside them.
struct link_layer {
    known_link_type type = LINK_USER0;
    const char* dissector = nullptr;  // of an exported PDU: what reads the frame
    int skipped = 0;                  // octets of the record in front of the frame, left out
};

/// The link layer of a channel type; that of a B-channel is the chosen one.
[[nodiscard]] link_layer find_link_layer(int channel_type, const link_layer& bchannel);

/// The link type of a channel type in classic PCAP, one that tells the direction where there is one; nothing for
/// interfaces whose records have no link type. A B-channel counts as PPP.
[[nodiscard]] std::optional<std::uint32_t> link_type_of(int channel_type);

/// The viewer options that show every layer of a channel type; for one that has no decoder, hexadecimal output.
[[nodiscard]] const char* viewer_options_of(int channel_type);

}  // namespace ifwatch::capture
