#include "x25/xid.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "base/hex_dump.h"
#include "base/names.h"
#include "base/print.h"
#include "x25/v42bis.h"

namespace ifwatch {

namespace {

constexpr int FORMAT_LLC = 0x81;
constexpr int FORMAT_GENERAL = 0x82;
constexpr int GROUP_HEADER = 3;      // GI and GL
constexpr int PARAMETER_HEADER = 2;  // PI and PL

constexpr named_value LLC_CLASSES[] = {
    {1, "\t  Class I LLC/Type 1 LLC\n"},
    {2, "\t  Type 2 LLC\n"},
    {3, "\t  Class II LLC/Type 1 & 2 LLC\n"},
};

constexpr named_value ADDRESS_RESOLUTION[] = {
    {1, "Unique identifier"},
    {2, "Local data link layer address"},
};

constexpr named_value PARAMETERS[] = {
    {1, "Unique identifier"},
    {2, "Class of procedures"},
    {3, "HDLC optional functions"},
    {4, "Group address(es)"},
    {5, "Maximum information field length - transmit"},
    {6, "Maximum information field length - receive"},
    {7, "Window size (k) - transmit"},
    {8, "Window size (k) - receive"},
    {9, "Acknowledgement timer"},
    {10, "Retransmission attempts"},
    {11, "Reply delay timer"},
    {12, "Port number"},
};

constexpr named_value MULTILINK_PARAMETERS[] = {
    {1, "Lost frame timer (MT1)"},
    {2, "Group busy timer (MT2)"},
    {3, "Reset confirmation timer (MT3)"},
    {4, "Multilink window size (MW) - transmit"},
    {5, "Multilink window size (MW) - receive"},
    {6, "Guard region window size (MX)"},
    {7, "Multilink group size"},
    {8, "Multilink group member(s)"},
};

// What stands behind "PI= PL= " on the line of a parameter. Each returns whether the walk of the group goes on.

bool print_address_resolution(octets /*group*/, int identifier, octets /*value*/) {
    print<"%s\n">(value_name(ADDRESS_RESOLUTION, identifier, ""));
    return true;
}

bool print_parameter(octets /*group*/, int identifier, octets /*value*/) {
    print<"%s\n">(value_name(PARAMETERS, identifier, ""));
    return true;
}

bool print_multilink(octets /*group*/, int identifier, octets /*value*/) {
    print<"%s\n">(value_name(MULTILINK_PARAMETERS, identifier, ""));
    return true;
}

bool identifies_v42bis(octets value) {
    return value.length == 3 && (value.text(0, 3) == "V42" || value.text(0, 3) == "X75");
}

bool print_private(octets group, int identifier, octets value) {
    if (identifier == 0) {
        print<"Identifier: ">();
        if (identifies_v42bis(value)) {
            // The whole group is shown again, from its first parameter.
            dump_v42bis_parameters(group);
            return false;
        }
    }
    print<"\n">();
    return true;
}

bool print_user_data(octets /*group*/, int identifier, octets value) {
    if (identifier == 255) {
        print<"Manufacturer ID (%sassigned by ITU)">((value[0] & 0x80) == 0 ? "not " : "");
    }
    print<"\n">();
    return true;
}

struct group_kind {
    int identifier = 0;
    table_text name;
    bool (*print_line)(octets group, int identifier, octets value) = nullptr;
    table_text error;
};

constexpr group_kind GROUPS[] = {
    {65, "Address resolution", print_address_resolution, "Illegal Address Resolution XID frame"},
    {128, "Parameter negotiation", print_parameter, "Illegal Parameter Negotiation XID frame"},
    {136, "Multilink parameter negotiation", print_multilink, "Illegal Multilink Parameter Negotiation XID frame"},
    {240, "Private parameter negotiation", print_private, "Illegal Private Parameter Negotiation subfield"},
    {255, "User data", print_user_data, "Illegal parameter field length in XID frame"},
};

/// A parameter without a value at the end of its group is not shown.
void dump_group(octets group, const group_kind& kind) {
    octets rest = group;
    while (rest.length > PARAMETER_HEADER && rest.held() > 0) {
        const int identifier = rest[0];
        const octets value = rest.at(PARAMETER_HEADER, rest[1]);
        if (PARAMETER_HEADER + value.length > rest.length) {
            print<"%s\n">(kind.error);
            return;
        }
        print<"\t    PI=%d PL=%d ">(identifier, value.length);
        if (!kind.print_line(group, identifier, value)) {
            return;
        }
        hex_dump(value, value.length, 8, 16);
        rest = rest.skip(PARAMETER_HEADER + value.length);
    }
}

/// Walks the groups and returns the text of the error that ended the walk, empty when none did.
std::string_view dump_groups(octets rest) {
    while (rest.length >= GROUP_HEADER && rest.held() > 0) {
        const int identifier = rest[0];
        const octets group = rest.at(GROUP_HEADER, rest.be16(1));
        if (GROUP_HEADER + group.length > rest.length) {
            return "Data Link Layer subfield too short";
        }
        print<"\t  GI=%d GL=%d ">(identifier, group.length);
        const auto* const kind = std::find_if(std::begin(GROUPS), std::end(GROUPS),
                                              [identifier](const auto& one) { return one.identifier == identifier; });
        if (kind == std::end(GROUPS)) {
            print<"\n">();
            return "unknown Group Identification\n";
        }
        print<"%s\n">(kind->name);
        dump_group(group, *kind);
        rest = rest.skip(GROUP_HEADER + group.length);
    }
    return {};
}

void dump_general_field(octets field) {
    print<" FI=%02X (ISO/IEC 8885)\n">(field[0]);
    const std::string_view error = dump_groups(field.skip(1));
    if (!error.empty()) {
        print<"\t  ***Illegal XID-Frame: %s!">(error);
    }
}

void dump_llc_field(octets field) {
    print<" FI=%02X (ISO 8802-2, LLC)\n">(field[0]);
    if (field.length <= 2) {
        print<"\t  XID information field too short">();
        return;
    }
    print<"%s">(value_name(LLC_CLASSES, field[1] & 0x1F, ""));
    print<"\t  Receive Window Size %d">(field[2] >> 1);
}

void dump_unknown_field(octets field) {
    print<"\t  ">();
    for (const std::uint8_t octet : field.run(0, field.length)) {
        print<" %02x">(octet);
    }
    print<"\n">();
}

}  // namespace

int dump_xid_info(octets field) {
    if (field.length < 1) {
        return field.length;
    }
    switch (field[0]) {
        case FORMAT_LLC:
            dump_llc_field(field);
            break;
        case FORMAT_GENERAL:
            dump_general_field(field);
            break;
        default:
            dump_unknown_field(field);
            break;
    }
    return field.length;
}

}  // namespace ifwatch
