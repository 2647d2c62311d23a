#include "ppp/ipcp.h"

#include "base/print.h"
#include "ppp/option_walk.h"
#include "ppp/protocol_names.h"

namespace ifwatch {

namespace {

constexpr int HIGHEST_CODE = 7;

// Options of one address.
constexpr named_value ADDRESS_OPTIONS[] = {
    {3, "IP-Address "},
    {129, "Primary  DNS Server   "},
    {130, "Primary NBNS Server   "},
    {131, "Secondary  DNS Server "},
    {132, "Secondary NBNS Server "},
};

void print_addresses(ppp_option& option) {
    const octets data = option.data;
    print<"IP-Addresses src %d.%d.%d.%d dest %d.%d.%d.%d">(data[0], data[1], data[2], data[3], data[4], data[5],
                                                           data[6], data[7]);
}

void print_compression(ppp_option& option) {
    // Both compression protocols in use (0x002D, 0x002F) are told apart by the low octet alone.
    const int protocol = option.data[1];
    print<"IP-Compression-Protocol 0x%2.2x (%s)">(protocol, ppp_protocol_name(protocol));
}

void print_address_option(ppp_option& option) {
    const octets data = option.data;
    if (const table_text label = value_name(ADDRESS_OPTIONS, option.type)) {
        print<"%s%d.%d.%d.%d">(label, data[0], data[1], data[2], data[3]);
    } else {
        print<"unknown code %d">(option.type);
    }
}

constexpr option_kind OPTIONS[] = {
    {1, print_addresses},
    {2, print_compression},
};

void print_option(ppp_option& option) {
    print<"\t\t">();
    find_option(OPTIONS, option.type, print_address_option)(option);
    print<";\n">();
}

}  // namespace

void dump_ipcp(const control_packet& packet) {
    print<"\t     ID %d IPCP %s\n">(packet.identifier, control_code_name(packet.code, HIGHEST_CODE));
    walk_options(packet.data, print_option);
}

}  // namespace ifwatch
