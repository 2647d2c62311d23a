#include "capture/link_header.h"

#include <algorithm>
#include <string_view>

#include "base/byte_order.h"

namespace ifwatch::capture {

namespace {

using packet_octets = std::span<const std::uint8_t>;

constexpr std::uint16_t LINUX_BROADCAST = 1;  // packet types
constexpr std::uint16_t LINUX_MULTICAST = 2;
constexpr std::uint16_t LINUX_SENT = 4;
constexpr std::uint16_t ARPHRD_LAPD = 8445;   // hardware type
constexpr std::uint16_t ETH_P_LAPD = 0x0030;  // protocol types
constexpr std::uint16_t ETH_P_802_3 = 1;
constexpr std::uint16_t ETH_P_802_2 = 4;
constexpr std::size_t COOKED_ADDRESS = 8;
constexpr std::size_t MAC_ADDRESS = 6;
constexpr std::size_t MAX_802_3_LENGTH = 1500;

constexpr std::uint8_t SUNATM_SENT = 0x80;
constexpr std::uint8_t SUNATM_LLC = 2;
constexpr std::uint32_t CONNECTION_BITS = 0xFFFFFF00;  // of the info word: VPI and VCI

constexpr std::size_t PDU_TAG_HEADER = 4;

void append_be16(std::vector<std::uint8_t>& packet, std::uint16_t value) {
    packet.push_back(static_cast<std::uint8_t>(value >> 8));
    packet.push_back(static_cast<std::uint8_t>(value));
}

void append_lapd_header(bool sent, std::vector<std::uint8_t>& packet) {
    append_be16(packet, sent ? LINUX_SENT : 0);
    append_be16(packet, ARPHRD_LAPD);
    append_be16(packet, 0);
    packet.resize(packet.size() + COOKED_ADDRESS);  // all zero
    append_be16(packet, ETH_P_LAPD);
}

struct cooked_header {
    std::uint16_t packet_type = 0;
    std::size_t address_length = 0;
    packet_octets address;
    std::uint16_t protocol = 0;
};

/// Makes the Ethernet header that fits a cooked one. Who sent it is known, to whom only of a broadcast.
void read_cooked(const cooked_header& cooked, std::size_t payload, link_facts& facts) {
    if (cooked.packet_type <= LINUX_MULTICAST || cooked.packet_type == LINUX_SENT) {  // not between two others
        facts.sent = cooked.packet_type == LINUX_SENT;
    }
    auto* const ethernet = facts.instead.data();
    if (cooked.packet_type == LINUX_BROADCAST) {
        std::fill_n(ethernet, MAC_ADDRESS, std::uint8_t{0xFF});
    }
    std::copy_n(cooked.address.begin(), std::min(cooked.address_length, MAC_ADDRESS), &ethernet[MAC_ADDRESS]);
    // Of an IEEE 802.3 frame the length stands where others have their type.
    const bool counted = cooked.protocol == ETH_P_802_2 || cooked.protocol == ETH_P_802_3;
    store_be16(&ethernet[2 * MAC_ADDRESS],
               counted ? static_cast<std::uint16_t>(std::min(payload, MAX_802_3_LENGTH)) : cooked.protocol);
    facts.instead_length = facts.instead.size();
}

/// A text up to the zeros that pad it.
std::string_view padded_text(packet_octets value) {
    const std::string_view text(reinterpret_cast<const char*>(value.data()), value.size());
    return text.substr(0, text.find('\0'));
}

bool read_pdu_tags(packet_octets packet, link_facts& facts) {
    for (packet_octets rest = packet; rest.size() >= PDU_TAG_HEADER;) {
        const std::uint16_t code = load_be16(rest.data());
        const std::size_t length = load_be16(&rest[2]);
        rest = rest.subspan(PDU_TAG_HEADER);
        if (code == PDU_TAG_END) {
            facts.length = packet.size() - rest.size();
            return true;
        }
        if (length > rest.size()) {
            return false;
        }
        const packet_octets value = rest.first(length);
        if (code == PDU_TAG_DISSECTOR) {
            facts.cell = padded_text(value) == CELL_DISSECTOR;
        } else if (code == PDU_TAG_DIRECTION && length == sizeof(std::uint32_t)) {
            facts.sent = load_be32(value.data()) == 0;
        }
        rest = rest.subspan(length);
    }
    return false;
}

}  // namespace

std::size_t link_header_length(link_header header) {
    switch (header) {
        case link_header::DIRECTION:
            return 1;
        case link_header::LINUX_LAPD:
        case link_header::LINUX_COOKED:
            return 16;
        case link_header::LINUX_COOKED_2:
            return 20;
        case link_header::SUNATM:
        case link_header::EXPORTED_PDU:
            return 4;
        case link_header::NONE:
            break;
    }
    return 0;
}

bool read_link_header(link_header header, packet_octets packet, link_facts& facts) {
    facts = {};
    facts.length = link_header_length(header);
    if (packet.size() < facts.length) {
        return false;
    }
    const std::size_t payload = packet.size() - facts.length;
    switch (header) {
        case link_header::DIRECTION:
            facts.sent = packet[0] != 0;
            break;
        case link_header::LINUX_LAPD:
            facts.sent = load_be16(packet.data()) == LINUX_SENT;
            break;
        case link_header::SUNATM:
            facts.sent = (packet[0] & SUNATM_SENT) != 0;
            facts.info = load_be32(packet.data()) << 8 & CONNECTION_BITS;
            break;
        case link_header::LINUX_COOKED:
            read_cooked({load_be16(packet.data()), load_be16(&packet[4]), packet.subspan(6, COOKED_ADDRESS),
                         load_be16(&packet[14])},
                        payload, facts);
            break;
        case link_header::LINUX_COOKED_2:
            read_cooked({packet[10], packet[11], packet.subspan(12, COOKED_ADDRESS), load_be16(packet.data())}, payload,
                        facts);
            break;
        case link_header::EXPORTED_PDU:
            return read_pdu_tags(packet, facts);
        case link_header::NONE:
            break;
    }
    return true;
}

std::array<std::uint8_t, 4> sunatm_header(const frame_facts& facts) {
    constexpr std::uint8_t snap[] = {0xAA, 0xAA, 0x03};
    constexpr std::uint8_t iso[] = {0xFE, 0xFE, 0x03};
    const auto first = facts.frame.first(std::min(facts.frame.size(), std::size(snap)));
    const bool llc = std::ranges::equal(first, snap) || std::ranges::equal(first, iso);
    std::array<std::uint8_t, 4> header{};
    store_be32(header.data(), facts.info >> 8);
    header[0] = static_cast<std::uint8_t>((facts.sent ? SUNATM_SENT : 0) | (llc ? SUNATM_LLC : 0));
    return header;
}

bool can_be_written(link_header header) {
    return header != link_header::LINUX_COOKED && header != link_header::LINUX_COOKED_2 &&
           header != link_header::EXPORTED_PDU;
}

void append_link_header(link_header header, const frame_facts& facts, std::vector<std::uint8_t>& packet) {
    switch (header) {
        case link_header::DIRECTION:
            packet.push_back(facts.sent ? 1 : 0);
            break;
        case link_header::LINUX_LAPD:
            append_lapd_header(facts.sent, packet);
            break;
        case link_header::SUNATM: {
            const auto made = sunatm_header(facts);
            packet.insert(packet.end(), made.begin(), made.end());
            break;
        }
        case link_header::LINUX_COOKED:
        case link_header::LINUX_COOKED_2:
        case link_header::EXPORTED_PDU:
        case link_header::NONE:
            break;
    }
}

}  // namespace ifwatch::capture
