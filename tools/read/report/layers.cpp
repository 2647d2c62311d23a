#include "read/report/layers.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "atm/cell_header.h"
#include "base/text_sink.h"
#include "display/async_hdlc.h"
#include "display/channel_display.h"
#include "display/mode_flags.h"
#include "isdn/lapd.h"
#include "lan/ethertype.h"
#include "lan/rfc1483.h"
#include "lan/token_ring.h"
#include "lan/wlan_oid.h"
#include "ppp/ppp.h"
#include "read/report/station.h"

namespace ifwatch::reporting {

namespace {

constexpr int LAST_DATA_PROTOCOL = 0x7FFF;
constexpr int PROTOCOL_IP = 0x0021;
constexpr int PROTOCOL_MULTILINK = 0x003D;
constexpr int MULTILINK_HEADER = 4;

bool take_ip_datagram(interface_report& to, const frame& what) {
    if (what.data[0] >> 4 != 4) {
        return false;
    }
    take_ip(to.lan, to.about, what);
    return true;
}

/// Moves `packet` behind the multilink header of a fragment. False when no start of a packet stands there.
bool skip_multilink_header(octets& packet) {
    const bool begins = (packet[0] & 0x80) != 0;
    packet = packet.skip(MULTILINK_HEADER);
    return begins && packet.length > 0;
}

void take_ppp_frame(interface_report& to, const frame& what, ppp_end from) {
    octets packet = what.data;
    if (packet[0] == 0xFF && packet[1] == 0x03) {
        packet = packet.skip(2);
    }
    int protocol = take_ppp_protocol(packet);
    while (protocol == PROTOCOL_MULTILINK) {
        if (!skip_multilink_header(packet)) {
            take_ppp_data(to.ppp, to.about, what.with(packet), from, protocol);
            return;
        }
        protocol = take_ppp_protocol(packet);
    }
    const frame carried = what.with(packet);
    if (protocol > LAST_DATA_PROTOCOL) {
        take_ppp_control(to.ppp, to.about, carried, from, protocol);
        return;
    }
    take_ppp_data(to.ppp, to.about, carried, from, protocol);
    if (protocol == PROTOCOL_IP) {
        take_ip_datagram(to, carried);
    }
}

/// The end of a link that is the only one of its line.
ppp_end end_of_line(const frame& what, std::uint64_t link = 0) { return {link, what.sent ? 1 : 0}; }

// --- LAN

constexpr int ETHERNET_HEADER = 14;
constexpr int LONGEST_802_3 = 1500;
constexpr int PPPOE_HEADER = 6;
constexpr int SAP_SNAP = 0xAA;
constexpr int SAP_IPX = 0xE0;
constexpr int SNAP_HEADER = 8;
constexpr int UNNUMBERED = 3;

/// A PPPoE session is one of its two stations, and has a number there. Which of them sends is always known.
ppp_end pppoe_end(octets ethernet) {
    const std::uint64_t to = station_at(ethernet);
    const std::uint64_t from = station_at(ethernet.skip(6));
    const auto session = static_cast<std::uint64_t>(ethernet.be16(ETHERNET_HEADER + 2));
    return {session << ppp_end::SESSION_SHIFT | (to ^ from), from > to ? 1 : 0};
}

void take_pppoe_session(interface_report& to, const frame& what, octets packet) {
    const octets rest = packet.skip(PPPOE_HEADER);
    const int length = packet.be16(4);
    take_ppp_frame(to, what.with(rest.at(0, std::min(length, rest.length))), pppoe_end(what.data));
}

void take_pppoe_packet(interface_report& to, const frame& what, octets packet) {
    constexpr int terminate = 0xA7;
    take_pppoe_discovery(to.pppoe, to.about, what);
    if (packet[1] == terminate) {
        take_ppp_session_end(to.ppp, to.about, what, pppoe_end(what.data).link);
    }
}

/// What stands behind a header of the link layer, and the key under which dump_ethertype() knows it.
struct link_payload {
    octets data;
    int type = KEY_NONE;

    [[nodiscard]] bool bridged() const { return type == KEY_BRIDGED || type == KEY_BRIDGED_FCS; }
};

link_payload llc_payload(octets llc) {
    if (llc[0] == SAP_SNAP) {
        return {llc.skip(SNAP_HEADER), llc.be16(6)};
    }
    const int header = (llc[2] & UNNUMBERED) == UNNUMBERED ? 3 : 4;
    return {llc.skip(header), llc[0]};
}

link_payload ethernet_payload(octets ethernet) {
    const int type_or_length = ethernet.be16(12);
    const octets rest = ethernet.skip(ETHERNET_HEADER);
    if (type_or_length > LONGEST_802_3) {
        return {rest, type_or_length};
    }
    return llc_payload(rest.at(0, std::min(type_or_length, rest.length)));
}

/// A payload that is no bridged frame. `what` begins with the Ethernet header where there is one.
bool take_ethertype(interface_report& to, const frame& what, const link_payload& payload) {
    switch (payload.type) {
        case ETHERTYPE_IP:
            return take_ip_datagram(to, what.with(payload.data));
        case ETHERTYPE_ARP:
        case ETHERTYPE_RARP:
            take_arp(to.lan, to.about, what.with(payload.data));
            return true;
        case ETHERTYPE_PPPOE_DISCOVERY:
            take_pppoe_packet(to, what, payload.data);
            return true;
        case ETHERTYPE_PPPOE_SESSION:
            take_pppoe_session(to, what, payload.data);
            return true;
        case ETHERTYPE_IPX:
        case ETHERTYPE_SNMP:
        case SAP_IPX:
            return true;
        default:
            return false;
    }
}

/// An Ethernet frame, or the last of those that are bridged in each other.
bool take_ethernet(interface_report& to, const frame& what) {
    octets ethernet = what.data;
    for (int nesting = 0; nesting < MAX_NESTING; ++nesting) {
        const link_payload payload = ethernet_payload(ethernet);
        if (!payload.bridged()) {
            return take_ethertype(to, what.with(ethernet), payload);
        }
        ethernet = payload.data;
    }
    return false;
}

bool take_link_payload(interface_report& to, const frame& what, const link_payload& payload) {
    return payload.bridged() ? take_ethernet(to, what.with(payload.data)) : take_ethertype(to, what, payload);
}

bool take_lan(interface_report& to, const frame& what, const record_header& /*header*/) {
    return take_ethernet(to, what);
}

bool take_token_ring(interface_report& to, const frame& what, const record_header& /*header*/) {
    return take_link_payload(to, what, llc_payload(what.data.skip(token_ring_header_length(what.data))));
}

bool take_tunnel(interface_report& to, const frame& what, const record_header& /*header*/) {
    return take_ip_datagram(to, what.with(what.data.skip(2)));
}

bool take_bare_ip(interface_report& to, const frame& what, const record_header& /*header*/) {
    return take_ip_datagram(to, what);
}

// --- ATM

constexpr int CELL_HEADER = 4;

bool take_aal5(interface_report& to, const frame& what, std::uint64_t circuit) {
    const encapsulation found = rfc1483_encapsulation(what.data);
    const octets payload = what.data.skip(found.header_length);
    if (found.type == KEY_PPP) {
        take_ppp_frame(to, what.with(payload), end_of_line(what, circuit));
        return true;
    }
    return take_link_payload(to, what.with(payload), {payload, found.type});
}

bool take_atm(interface_report& to, const frame& what, const record_header& header) {
    if ((header.record_flags & RECORD_CELL_HEADER) == 0) {
        return take_aal5(to, what, header.channel_info >> 8);
    }
    int cell_class = CELL_USER_DATA;
    text_buffer<128> not_shown;
    format_cell_header(not_shown, what.data, cell_class);
    if (cell_class == CELL_OAM) {
        take_cell(to.cells, to.about, what);
        return true;
    }
    return cell_class == CELL_IMA || take_aal5(to, what.with(what.data.skip(CELL_HEADER)), what.data.le32(0) >> 4);
}

// --- ISDN

constexpr int SAPI_X25 = 16;

bool take_dchannel(interface_report& to, const frame& what, const record_header& /*header*/) {
    const bool link_down = take_lapd(to.isdn, to.about, what);
    if (lapd_sapi(what.data) != SAPI_X25) {
        return true;
    }
    if (link_down) {
        take_x25_link_down(to.x25, to.about, what, lapd_tei(what.data));
    } else if (lapd_is_i_frame(what.data)) {
        take_x25(to.x25, to.about, what.with(what.data.skip(lapd_header_length(what.data))), lapd_tei(what.data));
    }
    return true;
}

bool take_pabx_record(interface_report& to, const frame& what, const record_header& /*header*/) {
    return take_pabx(to.isdn, to.about, what);
}

constexpr int IP_VERSION_4 = 0x45;
constexpr std::array<int, 6> LINK_COMMANDS = {0x2F, 0x6F, 0x63, 0x43, 0x0F, 0xAF};  // SABM, SABME, UA, DISC, DM, XID
constexpr std::array<int, 5> FIRST_PROTOCOLS = {0xC021, 0xC023, 0xC223, 0x8021, 0x80FD};

/// What a B-channel carries, by a frame that can be nothing else.
channel_content content_of(octets data) {
    const bool has_address = data[0] == 0xFF && data[1] == 0x03;
    if (has_address || std::ranges::find(FIRST_PROTOCOLS, data.be16(0)) != FIRST_PROTOCOLS.end()) {
        return channel_content::PPP;
    }
    const bool station = data[0] == 0x01 || data[0] == 0x03;
    if (station && std::ranges::find(LINK_COMMANDS, data[1] & ~0x10) != LINK_COMMANDS.end()) {
        return channel_content::LAPB;
    }
    return channel_content::UNKNOWN;
}

bool take_lapb_frame(interface_report& to, const frame& what) {
    const octets user_data = take_lapb(to.x25, to.about, what);
    if (user_data.within() <= 0) {
        return true;
    }
    if ((to.mode_flags & MODE_EFT) != 0) {
        take_eft(to.eft, to.about, what.with(user_data));
    } else if (user_data[0] == IP_VERSION_4) {
        take_ip_datagram(to, what.with(user_data));
    }
    return true;
}

/// A frame that may be put together from slices: what it is, its own octets tell or those before it; else the options.
bool take_channel_frame(interface_report& to, const frame& what) {
    constexpr std::uint32_t link_layers = MODE_LAYER2 | MODE_LAYER3 | MODE_EFT;
    if (const channel_content told = content_of(what.data); told != channel_content::UNKNOWN) {
        to.content = told;
    }
    const bool asked_for_ppp = (to.mode_flags & (MODE_PPP | MODE_PPP_X75)) != 0 && (to.mode_flags & MODE_LAYER3) == 0;
    const bool unknown = to.content == channel_content::UNKNOWN;
    if (to.content == channel_content::PPP || (unknown && asked_for_ppp)) {
        take_ppp_frame(to, what, end_of_line(what));
        return true;
    }
    return (!unknown || (to.mode_flags & link_layers) != 0) && take_lapb_frame(to, what);
}

/// A slice of an asynchronous stream: the frames that it completes.
bool take_slice(interface_report& to, const frame& what, std::uint32_t flags) {
    async_scanner scanner{what.data, to.async[flags != 0 ? 0 : 1]};
    while (scanner.rest.within() > 0) {
        if (!async_next_frame(scanner)) {
            continue;
        }
        std::array<std::uint8_t, async_state::MAXIMUM> copy{};
        std::copy_n(scanner.frame.data, scanner.frame.within(), copy.begin());
        take_channel_frame(to, what.with(octets_of(copy).cut(scanner.frame.length)));
    }
    return true;
}

constexpr int STREAM_PREFIX = 4;

/// Asynchronous PPP in X.75: what an X.75 frame carries is a slice of the stream.
bool take_ppp_in_x75(interface_report& to, const frame& what, std::uint32_t flags) {
    const octets data = what.data;
    if ((data[1] & 1) != 0) {
        return true;  // no information frame
    }
    octets stream = data.skip(2);
    if (stream[0] == 0x01 && (stream[1] & 0x7F) == 0 && stream[2] == 0x01 && stream[3] == 0x00) {
        stream = stream.skip(STREAM_PREFIX);
    }
    return take_slice(to, what.with(stream), flags);
}

bool take_bchannel(interface_report& to, const frame& what, const record_header& header) {
    if ((to.mode_flags & MODE_FAX) != 0) {
        take_fax(to.fax, to.about, what, header.record_flags);
        return true;
    }
    if ((to.mode_flags & MODE_PPP_X75) != 0) {
        return take_ppp_in_x75(to, what, header.record_flags);
    }
    if ((to.mode_flags & MODE_ASYNC_HDLC) != 0) {
        return take_slice(to, what, header.record_flags);
    }
    return take_channel_frame(to, what);
}

// --- Leased lines and the rest

bool take_ppp_line(interface_report& to, const frame& what, const record_header& /*header*/) {
    take_ppp_frame(to, what, end_of_line(what));
    return true;
}

bool take_lapb_line(interface_report& to, const frame& what, const record_header& /*header*/) {
    return take_lapb_frame(to, what);
}

bool take_wlan(interface_report& /*to*/, const frame& what, const record_header& /*header*/) {
    return wlan_oid_name(what.data.be32(0), true) != nullptr;
}

struct channel_layers {
    int channel_type;
    bool (*take)(interface_report& to, const frame& what, const record_header& header);
};

constexpr channel_layers CHANNELS[] = {
    {-2, take_pabx_record},  // PABX
    {0, take_dchannel},      // ISDN D-channel
    {1, take_bchannel},      // ISDN B-channel
    {2, take_atm},           // ATM (old)
    {3, take_atm},           // ATM
    {4, take_wlan},          // WLAN
    {5, take_bare_ip},       // IP over X.25
    {6, take_lan},           // LAN
    {7, take_lan},           // LAN 802.3
    {9, take_token_ring},    // Token Ring
    {16, take_lapb_line},    // LAPB
    {23, take_ppp_line},     // PPP
    {131, take_tunnel},      // Tunnel
    {135, take_lan},         // an Ethernet without a name of its own
};

}  // namespace

bool take_layers(interface_report& to, const frame& what, const record_header& header) {
    const auto* const found = std::ranges::find(CHANNELS, to.channel_type, &channel_layers::channel_type);
    return found != std::end(CHANNELS) && found->take(to, what, header);
}

}  // namespace ifwatch::reporting
