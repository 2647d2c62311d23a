#include "isdn/bearer_capability.h"

#include "base/names.h"
#include "base/print.h"
#include "isdn/capability_group.h"
#include "isdn/coding_standard.h"
#include "isdn/element_table.h"
#include "isdn/layer1_protocol.h"

namespace ifwatch {

namespace {

// What bits 6-5 of an octet behind octet 4 tell of it.
constexpr int LAYER_1 = 1;
constexpr int LAYER_2 = 2;
constexpr int LAYER_3 = 3;

constexpr int layer(int octet) { return octet >> 5 & 3; }

constexpr named_value INFORMATION_CAPABILITIES[] = {
    {0x00, "Speech"},
    {0x08, "unrestrict. digital info"},
    {0x09, "restricted digital info."},
    {0x10, "3.1 kHz Audio"},
    {0x11, "7 kHz Audio"},
    {0x18, "Video"},
};

constexpr named_value TRANSFER_RATES[] = {
    {0x10, "64 kbit/s"}, {0x11, "2 * 64 kbit/s"}, {0x13, "384 kbit/s"}, {0x15, "1536 kbit/s"}, {0x17, "1920 kbit/s"},
};

constexpr named_value STRUCTURES[] = {
    {0, "default"},
    {1, "8 kHz integrity "},
    {4, "service data unit integrity"},
    {7, "unstructured"},
};

constexpr named_value CONFIGURATIONS[] = {{0, "point-to-point"}};
constexpr named_value ESTABLISHMENTS[] = {{0, "demand"}};
constexpr named_value SYMMETRIES[] = {{0, "bidirectional symetric"}};

constexpr named_value LAYER_2_PROTOCOLS[] = {
    {0x01, "Basic mode ISO 1745 "},
    {0x02, "Q.921 , I.441"},
    {0x06, "X.25 , link layer "},
    {0x07, "X.25 , Multilink "},
    {0x08, "Extended LAPB , T.71 "},
    {0x09, "HDLC ARM , ISO 4335 "},
    {0x0A, "HDLC NRM , ISO 4335 "},
    {0x0B, "HDLC ABM , ISO 4335 "},
    {0x0C, "LAN logical link control"},
    {0x0D, "X.75 single link procedure"},
    {0x11, "ISO 7776"},
};

constexpr named_value LAYER_3_PROTOCOLS[] = {
    {0x02, "Q.931"},           {0x06, "X.25 , packet layer "}, {0x07, "ISO 8208 (X.25) "},
    {0x08, "ISO 8348 (OSI) "}, {0x09, "ISO 8473 (OSI) "},      {0x0A, "Minimum Network Layer, T.70"},
};

void print_transfer_rate(int octet) {
    print<"\n\t\t\t      Information transfer rate is ">();
    print_value(TRANSFER_RATES, octet & 0x1F, "0x%x (reserved)");
}

/// Octets 3 and 3a.
void dump_information_capability(capability_group& group) {
    const int octet = group.octet();
    print<"\n\t\t\t      Coding standard is %s">(name_at(CODING_STANDARDS, coding_standard(octet)));
    if (coding_standard(octet) == CODING_STANDARD_CCITT) {
        print<"\n\t\t\t      Information capability : ">();
        print_value(INFORMATION_CAPABILITIES, octet & 0x1F, "0x%x (reserved value)");
    } else {
        print<"\n\t\t\t      Information capability is unknown 0x%x">(octet & 0x1F);
    }
    if (group.next_in_group()) {
        // What is tested is the extension bit, not the one of the negotiation.
        print<"\n\t\t\t      Out-band negotiation is %spossible">(not_unless(group.is_last()));
    }
}

/// Octets 4, 4a and 4b.
void dump_transfer_mode(capability_group& group) {
    const bool circuit_mode = (group.octet() & 0x60) == 0;
    print<"\n\t\t\t      Transfer Mode is %s">(circuit_mode ? "circuit Mode" : "packet mode");
    if (circuit_mode) {
        print_transfer_rate(group.octet());
    }
    if (!group.next_in_group()) {
        return;
    }
    const int structure = group.octet();
    print<"\n\t\t\t      Structure is ">();
    print_value(STRUCTURES, structure >> 4 & 7, "(reserved value 0x%x)");
    print<"\n\t\t\t      Configuration is ">();
    print_value(CONFIGURATIONS, structure >> 2 & 3, "0x%x (reserved value)");
    print<"\n\t\t\t      Establishment is ">();
    print_value(ESTABLISHMENTS, structure & 3, "0x%x (reserved value)");
    if (!group.next_in_group()) {
        return;
    }
    print<"\n\t\t\t      Symetry is ">();
    print_value(SYMMETRIES, group.octet() >> 5 & 3, "0x%x (reserved value)");
    print_transfer_rate(group.octet());
}

void dump_layer2_protocol(int octet) {
    print<"\n\t\t\t      Layer 2 Rec. : ">();
    print_value(LAYER_2_PROTOCOLS, octet & 0x1F, "0x%x (reserved value)");
}

void dump_layer3_protocol(int octet) {
    print<"\n\t\t\t      Layer 3 Rec. : ">();
    print_value(LAYER_3_PROTOCOLS, octet & 0x1F, "0x%x (reserved value)");
}

}  // namespace

table_text information_capability_name(octets element) {
    const bool known = element.length > 2 && coding_standard(element[2]) == CODING_STANDARD_CCITT;
    return known ? value_name(INFORMATION_CAPABILITIES, element[2] & 0x1F) : nullptr;
}

table_text layer2_protocol_name(octets element) {
    capability_group group{element};
    const bool inside = group.inside() && group.next_group();
    while (inside && group.next_group()) {
        if (layer(group.octet()) == LAYER_2) {
            return value_name(LAYER_2_PROTOCOLS, group.octet() & 0x1F);
        }
    }
    return nullptr;
}

void dump_bearer_capability(octets element) {
    capability_group group{element};
    if (!group.inside()) {
        return;
    }
    dump_information_capability(group);
    if (!group.next_group()) {
        return;
    }
    dump_transfer_mode(group);
    if (!group.next_group()) {
        return;
    }
    if (layer(group.octet()) == LAYER_1) {
        dump_layer1_protocol(group);
        if (!group.next_group()) {
            return;
        }
    }
    if (layer(group.octet()) == LAYER_2) {
        dump_layer2_protocol(group.octet());
        if (!group.next_group()) {
            return;
        }
    }
    if (layer(group.octet()) == LAYER_3) {
        dump_layer3_protocol(group.octet());
    }
}

}  // namespace ifwatch
