#include "isdn/channel_identification.h"

#include "base/names.h"
#include "base/print.h"
#include "isdn/element_table.h"

namespace ifwatch {

namespace {

// Bits of the element's first octet.
constexpr int EXPLICIT_INTERFACE = 0x40;
constexpr int PRIMARY_RATE = 0x20;
constexpr int EXCLUSIVE = 0x08;
constexpr int D_CHANNEL = 0x04;
constexpr int CHANNEL_SELECTION = 0x03;

// Bits of the octet in front of the channel numbers or the map.
constexpr int LAST_OCTET = 0x80;
constexpr int CHANNEL_MAP = 0x10;
constexpr int MAP_TYPE = 0x0F;

constexpr table_text BASIC_SELECTIONS[] = {
    "Selected Channel : None",
    "Selected Channel : B1-Channel ",
    "Selected Channel : B2-Channel ",
    "Selected Channel : Any Channel",
};

constexpr table_text PRIMARY_SELECTIONS[] = {
    "Selected Channel : None",
    "Selected Channel : see chanspec",
    "Selected Channel : reserved",
    "Selected Channel : Any Channel",
};

/// The map-type octet itself is taken as the first of the four octets, and the bits are numbered from 31 down.
void dump_b_channel_map(octets map) {
    print<"Map-Type is B-Channel-units\n\t\t\t      ">();
    const std::uint32_t channels = map.be32(0);
    for (int channel = 31; channel >= 0; --channel) {
        if ((channels >> channel & 1) != 0) {
            print<"\n\t\t\t      Selected Channel : %d">(channel);
        }
    }
}

/// The channel shown is the one of the highest bit 4-0 set in the map-type octet, where bit 4 tells a map from channel
/// numbers: always the fifth.
void dump_h0_channel_map(octets /*map*/) {
    print<"Map-Type is H0-Channel-units\n\t\t\t      Selected Channel : e (5)">();
}

void dump_h11_channel_map(octets /*map*/) { print<"Map-Type is H11-Channel-units">(); }

void dump_h12_channel_map(octets /*map*/) { print<"Map-Type is H12-Channel-units">(); }

struct map_type {
    int value;
    void (*dump)(octets map);
};

constexpr map_type MAP_TYPES[] = {
    {3, dump_b_channel_map},
    {6, dump_h0_channel_map},
    {8, dump_h11_channel_map},
    {9, dump_h12_channel_map},
};

void dump_channel_map(octets map) {
    const int wanted = map[0] & MAP_TYPE;
    print<"\n\t\t\t      Channel is identified by Channel-Map\n\t\t\t      ">();
    for (const map_type& type : MAP_TYPES) {
        if (type.value == wanted) {
            type.dump(map);
            return;
        }
    }
    print<"Map-Type is unknown %d ">(wanted);
}

void dump_channel_numbers(octets numbers) {
    for (const std::uint8_t octet : numbers.run(0, numbers.length)) {
        print<"\n\t\t\t      Selected Channel is %d">(octet & 0x7F);
    }
}

/// Prints the interface identifiers, to the first with its extension bit set, and returns what follows it.
octets dump_interface_identifiers(octets rest) {
    int taken = 0;
    for (const std::uint8_t octet : rest.run(0, rest.length)) {
        print<"\n\t\t\t      Interface Identifier 0x%x %c">(octet, octet);
        ++taken;
        if ((octet & 0x80) != 0) {
            break;
        }
    }
    return rest.skip(taken);
}

void dump_primary_rate(int first, octets rest) {
    print<"%s">(name_at(PRIMARY_SELECTIONS, first & CHANNEL_SELECTION));
    if ((first & EXPLICIT_INTERFACE) != 0) {
        rest = dump_interface_identifiers(rest);
    }
    if (rest.length <= 0 || (rest[0] & LAST_OCTET) == 0) {
        return;
    }
    if ((rest[0] & CHANNEL_MAP) != 0) {
        dump_channel_map(rest);
    } else {
        dump_channel_numbers(rest.skip(1));
    }
}

}  // namespace

void dump_channel_identification(octets element) {
    const int first = element[2];
    const bool primary_rate = (first & PRIMARY_RATE) != 0;
    print<"Interface %s identified\n\t\t\t      ">((first & EXPLICIT_INTERFACE) != 0 ? "explicitly" : "implicitly");
    print<"Interface type %s\n\t\t\t      ">(primary_rate ? "S2M" : "S0");
    print<"Channelnumber is %s\n\t\t\t      ">((first & EXCLUSIVE) != 0 ? "exclusive (accept only this)"
                                                                        : "prefered Channel");
    print<"Identified Channel is %sD-Channel\n\t\t\t      ">(not_unless((first & D_CHANNEL) != 0));
    if (primary_rate) {
        dump_primary_rate(first, element.skip(3));
    } else {
        print<"%s">(name_at(BASIC_SELECTIONS, first & CHANNEL_SELECTION));
    }
}

}  // namespace ifwatch
