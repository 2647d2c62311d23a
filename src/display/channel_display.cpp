#include "display/channel_display.h"

#include <algorithm>
#include <iterator>

#include "atm/cell_header.h"
#include "atm/ima.h"
#include "atm/oam.h"
#include "base/print.h"
#include "display/async_hdlc.h"
#include "display/bchannel.h"
#include "display/mode_flags.h"
#include "isdn/dchannel.h"
#include "isdn/pabx.h"
#include "lan/ethernet.h"
#include "lan/rfc1483.h"
#include "lan/token_ring.h"
#include "lan/tunnel.h"
#include "lan/wlan_oid.h"

namespace ifwatch {

namespace {

constexpr int CELL_HEADER = 4;
constexpr int WLAN_HEADER = 8;  // the object and a word that tells a set request from a get request

bool direction_header(text_sink& out, shown_record& record) {
    print_to<"%c ">(out, record.direction);
    return true;
}

bool isdn_header(text_sink& out, shown_record& record) {
    print_to<"%c #%08ld ">(out, record.direction, record.header.sequence);
    return true;
}

bool pabx_header(text_sink& out, shown_record& record) {
    print_to<" [%02d:%02d]  %c #%ld CR 0x%x ">(out, record.payload[0], record.payload[1], record.direction,
                                               record.header.sequence, record.payload.le32(2));
    return true;
}

std::uint32_t vpi(const shown_record& record) { return record.header.channel_info >> 24; }
std::uint32_t vci(const shown_record& record) { return record.header.channel_info >> 8 & 0xFFFF; }

bool atm_header(text_sink& out, shown_record& record) {
    print_to<"%c ">(out, record.direction);
    if (record.has_cell_header) {
        format_cell_header(out, record.payload, record.cell_class);
    } else {
        print_to<"(AAL5) VPI=%3ld   VCI=%5ld  ">(out, vpi(record), vci(record));
    }
    print_to<" #%08ld ">(out, record.header.sequence);
    return true;
}

bool old_atm_header(text_sink& out, shown_record& record) {
    print_to<"%c ">(out, record.direction);
    if (record.has_cell_header) {
        format_cell_header(out, record.payload, record.cell_class);
    } else {
        print_to<"(AAL5) VPI=%3ld   VCI=%5ld   SAP=%3ld  ">(out, vpi(record), vci(record), record.event_code);
    }
    print_to<" #%08ld ">(out, record.header.sequence);
    // The low octet of the info word is the SAP here, so that these records are never events.
    record.event_code = 0;
    return true;
}

bool wlan_header(text_sink& out, shown_record& record) {
    const bool show_hidden = (record.context.mode_flags & MODE_FRAME_RELAY) != 0;
    const char* const name = wlan_oid_name(record.payload.be32(0), show_hidden);
    if (name == nullptr) {
        return false;
    }
    const char* label = "OID RECEIVE: ";
    if ((record.header.record_flags & RECORD_SENT) != 0) {
        label = record.payload.be32(4) != 0 ? "SET REQUEST:" : "GET REQUEST:";
    }
    print_to<"%s %-32s ">(out, label, name);
    record.payload = record.payload.skip(WLAN_HEADER);
    record.original_length -= WLAN_HEADER;
    return true;
}

void show_dchannel(shown_record& record) {
    const display_context& context = record.context;
    dump_dchannel(record.payload, context.mode_flags, context.tei_filter, context.cref_filter,
                  record.header.record_flags);
}

void show_pabx(shown_record& record) {
    const display_context& context = record.context;
    dump_pabx_message(record.payload, context.mode_flags, context.tei_filter, context.cref_filter,
                      record.header.record_flags);
}

void show_bchannel(shown_record& record) {
    display_context& context = record.context;
    if ((context.mode_flags & (MODE_ASYNC_HDLC | MODE_RESERVED)) != 0) {
        dump_data_packet(record.payload, record.header.record_flags, context);
    } else {
        dump_bchannel(record.payload, record.header.record_flags, context);
    }
}

void show_atm(shown_record& record) {
    const octets payload = record.has_cell_header ? record.payload.skip(CELL_HEADER) : record.payload;
    if (record.cell_class == CELL_USER_DATA) {
        dump_rfc1483(payload, record.context);
    } else if (record.cell_class == CELL_IMA) {
        dump_ima(payload, record.context);
    } else {
        dump_oam(payload, record.context);
    }
}

void show_ethernet(shown_record& record) { dump_ethernet(record.payload, record.context); }

/// A Token Ring frame is shown as such, and then once more as an Ethernet frame.
void show_token_ring(shown_record& record) {
    dump_token_ring(record.payload, record.context);
    show_ethernet(record);
}

void show_tunnel(shown_record& record) { dump_tunnel_ip(record.payload, record.context); }

constexpr channel_display CHANNEL_DISPLAYS[] = {
    {-2, pabx_header, show_pabx},            // PABX
    {0, isdn_header, show_dchannel},         // ISDN D-channel
    {1, isdn_header, show_bchannel},         // ISDN B-channel
    {2, old_atm_header, show_atm},           // ATM (old)
    {3, atm_header, show_atm},               // ATM
    {4, wlan_header, nullptr},               // WLAN
    {6, direction_header, show_ethernet},    // LAN
    {7, direction_header, show_ethernet},    // LAN 802.3
    {9, direction_header, show_token_ring},  // TokenRing
    {131, direction_header, show_tunnel},    // Tunnel
    {135, direction_header, show_ethernet},  // an Ethernet without a name of its own
};
constexpr channel_display OTHER_CHANNEL = {-1, direction_header, nullptr};

}  // namespace

const channel_display& find_channel_display(int channel_type) {
    const auto* const found = std::ranges::find(CHANNEL_DISPLAYS, channel_type, &channel_display::channel_type);
    return found != std::end(CHANNEL_DISPLAYS) ? *found : OTHER_CHANNEL;
}

}  // namespace ifwatch
