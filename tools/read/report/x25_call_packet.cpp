#include "read/report/x25_call_packet.h"

#include <algorithm>
#include <array>

namespace ifwatch::reporting {

namespace {

constexpr int HEADER = 3;
constexpr int ADDRESS_BIT = 8;    // of the format: addresses of more than 15 digits
constexpr int SEQUENCE_BITS = 3;  // of the format
constexpr int MODULO_8 = 1;
constexpr int MODULO_128 = 2;

constexpr int FACILITY_CHARGING = 0x01;  // fast select, too
constexpr int FACILITY_WINDOW = 0x43;
constexpr int FAST_SELECT = 0x80;

bool is_flow_control(int type) { return type == 0x01 || type == 0x05 || type == 0x09; }

/// The fields of a call packet in front of its user data.
struct call_layout {
    int called = 0;  // digits
    int calling = 0;
    octets digits;
    octets facilities;
    bool in_order = false;
};

call_layout layout_of(octets packet, const x25_header& header) {
    const octets fields = packet.skip(HEADER);
    const bool long_form = (header.format & ADDRESS_BIT) != 0;
    call_layout found;
    found.called = long_form ? fields[0] : fields[0] & 0x0F;
    found.calling = long_form ? fields[1] : fields[0] >> 4;
    found.digits = fields.skip(long_form ? 2 : 1);
    const octets behind = found.digits.skip((found.called + found.calling + 1) / 2);
    const int length = behind[0];
    found.facilities = behind.skip(1).cut(std::min(length, behind.length - 1));
    // A packet may end behind its addresses.
    found.in_order = fields.length > 0 && behind.length >= 0 && (behind.length == 0 || length < behind.length);
    return found;
}

bool is_decimal(octets digits, int count) {
    for (int i = 0; i < count; ++i) {
        if ((i % 2 == 0 ? digits[i / 2] >> 4 : digits[i / 2] & 0x0F) > 9) {
            return false;
        }
    }
    return true;
}

short_text address(octets digits, int first, int count) {
    constexpr std::array<char, 17> names = {"0123456789abcdef"};
    std::array<std::uint8_t, short_text::MOST + 1> text{};
    const int taken = std::min({count, 2 * digits.held() - first, static_cast<int>(text.size())});
    for (int i = 0; i < taken; ++i) {
        const int at = first + i;
        const int digit = at % 2 == 0 ? digits[at / 2] >> 4 : digits[at / 2] & 0x0F;
        text[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(names[static_cast<std::size_t>(digit)]);
    }
    short_text shown;
    shown.append(octets_of(text).cut(std::max(taken, 0)));
    return shown;
}

/// Octets of a facility, its code included: the class in the top two bits of the code tells them.
int facility_length(octets facility) {
    const int facility_class = facility[0] >> 6;
    return facility_class == 3 ? 2 + facility[1] : 2 + facility_class;
}

void read_facilities(octets rest, x25_call_fields& fields) {
    while (rest.within() > 0) {
        if (rest[0] == FACILITY_CHARGING) {
            fields.fast_select = (rest[1] & FAST_SELECT) != 0;
        } else if (rest[0] == FACILITY_WINDOW) {
            fields.window_from_called = rest[1] & 0x7F;
            fields.window_from_calling = rest[2] & 0x7F;
        }
        rest = rest.skip(facility_length(rest));
    }
}

}  // namespace

x25_header read_x25_header(octets packet) {
    x25_header header;
    const bool modulo128 = (packet[0] >> 4 & SEQUENCE_BITS) == MODULO_128;
    const int type = packet[2];
    header.format = packet[0] >> 4;
    header.channel = packet.be16(0) & 0x0FFF;
    header.mask = modulo128 ? 127 : 7;
    header.data = (type & 1) == 0;
    const int low_bits = modulo128 ? type : type & 0x1F;
    header.flow_control = is_flow_control(low_bits);
    header.type = header.flow_control ? low_bits : type;
    if (header.data || header.flow_control) {
        header.pr = modulo128 ? packet[3] >> 1 : type >> 5;
        header.ps = modulo128 ? type >> 1 : type >> 1 & 7;
        header.more = header.data && (modulo128 ? packet[3] & 1 : type >> 4 & 1) != 0;
        header.length = modulo128 ? HEADER + 1 : HEADER;
    }
    return header;
}

bool is_surely_x25(octets packet, const x25_header& header) {
    const int sequence_numbers = header.format & SEQUENCE_BITS;
    if ((sequence_numbers != MODULO_8 && sequence_numbers != MODULO_128) || packet.length < HEADER) {
        return false;
    }
    switch (header.type) {
        case X25_CALL: {
            const call_layout found = layout_of(packet, header);
            return header.channel != 0 && found.in_order && is_decimal(found.digits, found.called + found.calling);
        }
        case X25_CLEAR:
            return (header.format & ~SEQUENCE_BITS) == 0 && header.channel != 0 && packet.length >= HEADER + 1;
        case X25_RESTART:
            return header.channel == 0 && packet.length >= HEADER + 1 && packet.length <= HEADER + 2;
        case X25_RESTART_CONFIRMATION:
            return header.channel == 0 && packet.length == HEADER;
        default:
            return false;
    }
}

x25_call_fields read_x25_call_fields(octets packet, const x25_header& header) {
    x25_call_fields fields;
    if (packet.length <= HEADER) {
        return fields;
    }
    const call_layout found = layout_of(packet, header);
    fields.called = address(found.digits, 0, found.called);
    fields.calling = address(found.digits, found.called, found.calling);
    read_facilities(found.facilities, fields);
    return fields;
}

}  // namespace ifwatch::reporting
