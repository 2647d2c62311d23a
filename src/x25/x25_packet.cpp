#include "x25/x25_packet.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "base/names.h"
#include "base/print.h"
#include "x25/x25_cause.h"
#include "x25/x25_facilities.h"
#include "x25/x25_fields.h"

namespace ifwatch {

namespace {

constexpr int HEADER_LENGTH = 3;

/// The fields that every packet has.
struct packet_header {
    const char* prefix;
    bool modulo128;
    int bit7;  // Q or A
    int d_bit;
    int lcn;
    int type;
};

packet_header read_header(octets packet) {
    const bool modulo128 = (packet[0] >> 4 & 3) == 2;
    return {modulo128 ? "E-" : "", modulo128, packet[0] >> 7, packet[0] >> 6 & 1, packet.be16(0) & 0x0FFF, packet[2]};
}

int dump_data_header(octets packet, const packet_header& header) {
    const int m_bit = header.modulo128 ? packet[3] & 1 : packet[2] >> 4 & 1;
    const int pr = header.modulo128 ? packet[3] >> 1 : packet[2] >> 5;
    const int ps = header.modulo128 ? packet[2] >> 1 : packet[2] >> 1 & 7;
    print<"\t\t%sDATA LCN=%d Q=%d D=%d M=%d P(R)=%d P(S)=%d\n">(header.prefix, header.lcn, header.bit7, header.d_bit,
                                                                m_bit, pr, ps);
    return header.modulo128 ? HEADER_LENGTH + 1 : HEADER_LENGTH;
}

// By the low five bits of the packet type; the upper three are P(R) in modulo 8 and must be 0 in modulo 128.
constexpr named_value FLOW_CONTROL_PACKETS[] = {
    {0x01, "RR"},
    {0x05, "RNR"},
    {0x09, "REJ"},
};

table_text flow_control_name(const packet_header& header) {
    return value_name(FLOW_CONTROL_PACKETS, header.modulo128 ? header.type : header.type & 0x1F);
}

int dump_flow_control(octets packet, const packet_header& header, table_text name) {
    const int pr = header.modulo128 ? packet[3] >> 1 : header.type >> 5;
    print<"\t\t%s%s LCN=%d Q=%d D=%d P(R)=%d\n">(header.prefix, name, header.lcn, header.bit7, header.d_bit, pr);
    return header.modulo128 ? HEADER_LENGTH + 1 : HEADER_LENGTH;
}

using field_printer = int (*)(octets field, int a_bit);

int addresses(octets field, int a_bit) { return dump_x25_addresses(field, a_bit); }
int facilities(octets field, int /*a_bit*/) { return dump_x25_facilities(field); }
int user_data(octets field, int /*a_bit*/) { return dump_x25_user_data(field); }
int clearing_cause(octets field, int /*a_bit*/) { return dump_x25_cause(field, X25_CLEARING_CAUSES); }
int resetting_cause(octets field, int /*a_bit*/) { return dump_x25_cause(field, X25_RESETTING_CAUSES); }
int restarting_cause(octets field, int /*a_bit*/) { return dump_x25_cause(field, X25_RESTARTING_CAUSES); }
int registration_cause(octets field, int /*a_bit*/) { return dump_x25_cause(field, X25_REGISTRATION_CAUSES); }
int diagnostic(octets field, int /*a_bit*/) { return dump_x25_diagnostic(field); }
int explanation(octets field, int /*a_bit*/) { return dump_x25_diag_explanation(field); }
int registration(octets field, int /*a_bit*/) { return dump_x25_registration(field); }

/// What a packet counts as its header.
enum class extent {
    PACKET,       // the whole packet
    FIELDS,       // the fields, which may claim more than the packet has
    HEADER_ONLY,  // user data follow
};

constexpr std::size_t FIELDS_MAX = 5;

struct packet_kind {
    int type = 0;
    table_text name;
    char bit7_name = 'A';
    extent counted = extent::PACKET;
    std::array<field_printer, FIELDS_MAX> fields{};
};

constexpr packet_kind PACKETS[] = {
    {0x0B, "INCOMING CALL / CALL REQUEST", 'A', extent::PACKET, {addresses, facilities, user_data}},
    {0x0F, "CALL CONNECTED / CALL ACCEPT", 'A', extent::FIELDS, {addresses, facilities, user_data}},
    {0x13,
     "CLEAR INDICATION / CLEAR REQUEST",
     'A',
     extent::PACKET,
     {clearing_cause, diagnostic, addresses, facilities, user_data}},
    {0x17, "CLEAR CONFIRMATION", 'A', extent::PACKET, {addresses, facilities}},
    {0x1B, "RESET INDICATION / RESET REQUEST", 'Q', extent::PACKET, {resetting_cause, diagnostic}},
    {0x1F, "RESET CONFIRMATION", 'Q', extent::PACKET, {}},
    {0x23, "INTERRUPT", 'Q', extent::HEADER_ONLY, {}},
    {0x27, "INTERRUPT CONFIRMATION", 'Q', extent::HEADER_ONLY, {}},
    {0xF1, "DIAGNOSTIC", 'Q', extent::PACKET, {diagnostic, explanation}},
    {0xF3, "REGISTRATION REQUEST", 'A', extent::PACKET, {addresses, registration}},
    {0xF7, "REGISTRATION CONFIRMATION", 'A', extent::PACKET, {addresses, registration, registration_cause, diagnostic}},
    {0xFB, "RESTART INDICATION / RESTART REQUEST", 'Q', extent::PACKET, {restarting_cause, diagnostic}},
    {0xFF, "RESTART CONFIRMATION", 'Q', extent::PACKET, {}},
};

constexpr packet_kind UNKNOWN_PACKET = {0, "UNKNOWN PRIMITIVE", 'A', extent::PACKET, {}};

const packet_kind& kind_of(int type) {
    const auto* const found =
        std::find_if(std::begin(PACKETS), std::end(PACKETS), [type](const auto& kind) { return kind.type == type; });
    return found != std::end(PACKETS) ? *found : UNKNOWN_PACKET;
}

/// Prints the fields one behind the other while octets are left; returns the offset behind the last one.
int dump_fields(octets packet, const packet_kind& kind, int a_bit) {
    int offset = HEADER_LENGTH;
    for (const field_printer field : kind.fields) {
        if (field == nullptr || offset >= packet.length) {
            break;
        }
        offset += field(packet.skip(offset), a_bit);
    }
    return offset;
}

int dump_control_packet(octets packet, const packet_header& header) {
    const packet_kind& kind = kind_of(header.type);
    print<"\t\t%s%s LCN=%d %c=%d D=%d\n">(header.prefix, kind.name, header.lcn, kind.bit7_name, header.bit7,
                                          header.d_bit);
    const int reached = dump_fields(packet, kind, header.bit7);
    switch (kind.counted) {
        case extent::HEADER_ONLY:
            return HEADER_LENGTH;
        case extent::FIELDS:
            return std::max(reached, packet.length);
        default:
            return packet.length;
    }
}

}  // namespace

int dump_x25_packet(octets packet) {
    if (packet.length < HEADER_LENGTH) {
        print<"\t\tlayer 3 info too short\n">();
        return packet.length;
    }
    const packet_header header = read_header(packet);
    if ((header.type & 1) == 0) {
        return dump_data_header(packet, header);
    }
    if (const table_text name = flow_control_name(header)) {
        return dump_flow_control(packet, header, name);
    }
    return dump_control_packet(packet, header);
}

}  // namespace ifwatch
