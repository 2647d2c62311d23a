#include "isdn/layer1_protocol.h"

#include "base/names.h"
#include "base/print.h"
#include "isdn/element_table.h"

namespace ifwatch {

namespace {

constexpr named_value LAYER_1_PROTOCOLS[] = {
    {1, "CCITT rate adaption V.110/X.30"},
    {2, "G.711 u-law"},
    {3, "G.711 a-law"},
    {4, "G.721 32kbit/s"},
    {5, "G.721 7 kHz audio"},
    {7, "Non CCITT rate adaption"},
    {8, "CCITT rate adaption V.120"},
    {9, "CCITT rate adaption X.31"},
};

constexpr named_value USER_RATES[] = {
    {0x00, "indicated by E-Bit (I.460)"},
    {0x01, "0.6 kbit/s (V.6 and X.1)"},
    {0x02, "1.2 kbit/s (V.6)"},
    {0x03, "2.4 kbit/s (V.6 and X.1)"},
    {0x04, "3.6 kbit/s (V.6)"},
    {0x05, "4.8 kbit/s (V.6 and X.1)"},
    {0x06, "7.2 kbit/s (V.6)"},
    {0x07, "8 kbit/s (I.460)"},
    {0x08, "9.6 kbit/s (V.6 and X.1)"},
    {0x09, "14.4 kbit/s (V.6)"},
    {0x0A, "16 kbit/s (I.460)"},
    {0x0B, "19.2 kbit/s (V.6)"},
    {0x0C, "32 kbit/s (I.460)"},
    {0x0E, "48 kbit/s (V.6 and X.1)"},
    {0x0F, "56 kbit/s (V.6)"},
    {0x10, "64 kbit/s (X.1)"},
    {0x15, "0.1345 kbit/s (X.1)"},
    {0x16, "0.100 kbit/s (X.1)"},
    {0x17, "0.075/1.2 kbit/s (V.6 and X.1)"},
    {0x18, "1.2/0.075 kbit/s (V.6 and X.1)"},
    {0x19, "0.050 kbit/s (V.6 and X.1)"},
    {0x1A, "0.075 kbit/s (V.6 and X.1)"},
    {0x1B, "0.110 kbit/s (V.6 and X.1)"},
    {0x1C, "0.150 kbit/s (V.6 and X.1)"},
    {0x1D, "0.200 kbit/s (V.6 and X.1)"},
    {0x1E, "0.300 kbit/s (V.6 and X.1)"},
    {0x1F, "12 kbit/s (V.6)"},
};

constexpr table_text INTERMEDIATE_RATES[] = {"Not used,", "8 kbit/s,", "16 kbit/s,", "32 kbit/s,"};

constexpr table_text STOP_BITS[] = {"Not used", "1 bit", "1.5 bits", "2 bits"};
constexpr table_text DATA_BITS[] = {"Not used", "5 bits", "7 bits", "8 bits"};
constexpr named_value PARITIES[] = {
    {0, "odd"}, {2, "even"}, {3, "none"}, {4, "forced to 0"}, {5, "forced to 1"},
};

/// Octet 5a.
void dump_user_rate(int octet) {
    print<"\n\t\t\t      %s, In-band negotiation %spossible">((octet & 0x40) != 0 ? "Asynchronous" : "Synchronous",
                                                              not_unless((octet & 0x20) != 0));
    print<"\n\t\t\t      User Rate is ">();
    print_value(USER_RATES, octet & 0x1F, "0x%x (reserved rate value)");
}

/// Octet 5b of V.110 and X.31 rate adaption.
void dump_v110(int octet) {
    print<"\n\t\t\t      Intermediate Rate is %s">(name_at(INTERMEDIATE_RATES, octet >> 5 & 3));
    print<"\n\t\t\t      NIC on TX %srequired,">(not_unless((octet & 0x10) != 0));
    print<"\n\t\t\t      NIC on RX %sacceptable,">(not_unless((octet & 0x08) != 0));
    print<"\n\t\t\t      Flow Control on TX %srequired,">(not_unless((octet & 0x04) != 0));
    print<"\n\t\t\t      Flow Control on RX %sacceptable">(not_unless((octet & 0x02) != 0));
}

/// The flags of V.120 rate adaption.
void dump_v120(int octet) {
    print<"\n\t\t\t      Rate adaption header %sincluded">(not_unless((octet & 0x40) != 0));
    print<"\n\t\t\t      Multiple frame establishment %ssupported">(not_unless((octet & 0x20) != 0));
    print<"\n\t\t\t      %s mode of operation">((octet & 0x10) != 0 ? "Protocol sensitive" : "Bit transparent");
    print<"\n\t\t\t      LLI is set to %s">((octet & 0x08) != 0 ? "full protocol negotiation" : "default (256)");
    print<"\n\t\t\t      Message originator is %s">((octet & 0x04) != 0 ? "\"assignor only\"" : "\"default assignee\"");
    print<"\n\t\t\t      Negotiation is done %s\n">((octet & 0x02) != 0 ? "in-band" : "with USER-INFORMATION");
}

/// Octets 5c and 5d.
void dump_character_format(capability_group& group) {
    const int octet = group.octet();
    print<"\n\t\t\t      Stop Bits are %s">(name_at(STOP_BITS, octet >> 5 & 3));
    print<"\n\t\t\t      Data Bits are %s">(name_at(DATA_BITS, octet >> 3 & 3));
    print<"\n\t\t\t      Parity is ">();
    print_value(PARITIES, octet & 7, "0x%x (reserved value)");
    if (group.next_in_group()) {
        print<"\n\t\t\t      Duplex mode is %s duplex">((group.octet() & 0x40) != 0 ? "full" : "half");
        print<"\n\t\t\t      Modem type is 0x%x">(group.octet());
    }
}

// Each takes the group from octet 5a to octet 5c and tells whether there is one.

bool dump_octet_5b(capability_group& group) {
    if (!group.next_in_group()) {
        return false;
    }
    dump_v110(group.octet());
    return group.next_in_group();
}

/// The flags of V.120 are read from the octet behind octet 5b.
bool dump_octet_behind_5b(capability_group& group) {
    if (!group.advance(2)) {
        return false;
    }
    dump_v120(group.octet());
    return group.next_in_group();
}

bool pass_octet_5b(capability_group& group) { return group.advance(2); }

struct rate_adaption {
    int protocol;
    bool (*to_octet_5c)(capability_group& group);
};

constexpr rate_adaption RATE_ADAPTIONS[] = {
    {1, dump_octet_5b},
    {8, dump_octet_behind_5b},
    {9, dump_octet_5b},
};

bool to_octet_5c(int protocol, capability_group& group) {
    for (const rate_adaption& adaption : RATE_ADAPTIONS) {
        if (adaption.protocol == protocol) {
            return adaption.to_octet_5c(group);
        }
    }
    return pass_octet_5b(group);
}

}  // namespace

void dump_layer1_protocol(capability_group& group) {
    const int protocol = group.octet() & 0x1F;
    print<"\n\t\t\t      Layer 1 : ">();
    print_value(LAYER_1_PROTOCOLS, protocol, "Unknown rate adaption 0x%x");
    if (!group.next_in_group()) {
        return;
    }
    dump_user_rate(group.octet());
    if (!group.is_last() && to_octet_5c(protocol, group)) {
        dump_character_format(group);
    }
}

}  // namespace ifwatch
