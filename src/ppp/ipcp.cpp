#include "ppp/ipcp.h"

#include "base/print.h"
#include "ppp/protocol_names.h"

namespace ifwatch {

namespace {

constexpr int HIGHEST_CODE = 7;

constexpr int IP_ADDRESSES = 1;
constexpr int IP_COMPRESSION_PROTOCOL = 2;

// Options of one address.
constexpr named_value ADDRESS_OPTIONS[] = {
    {3, "IP-Address "},
    {129, "Primary  DNS Server   "},
    {130, "Primary NBNS Server   "},
    {131, "Secondary  DNS Server "},
    {132, "Secondary NBNS Server "},
};

void put_addresses(text_sink& out, const ppp_option& option) {
    const octets data = option.data;
    print_to<"IP-Addresses src %d.%d.%d.%d dest %d.%d.%d.%d">(out, data[0], data[1], data[2], data[3], data[4], data[5],
                                                              data[6], data[7]);
}

void put_compression(text_sink& out, const ppp_option& option) {
    // Both compression protocols in use (0x002D, 0x002F) are told apart by the low octet alone.
    const int protocol = option.data[1];
    print_to<"IP-Compression-Protocol 0x%2.2x (%s)">(out, protocol, ppp_protocol_name(protocol));
}

void put_address_option(text_sink& out, const ppp_option& option) {
    const octets data = option.data;
    if (const table_text label = value_name(ADDRESS_OPTIONS, option.type)) {
        print_to<"%s%d.%d.%d.%d">(out, label, data[0], data[1], data[2], data[3]);
    } else {
        print_to<"unknown code %d">(out, option.type);
    }
}

void print_option(ppp_option& option) {
    print<"\t\t">();
    put_ipcp_option(standard_output, option);
    print<";\n">();
}

}  // namespace

void put_ipcp_option(text_sink& out, const ppp_option& option) {
    switch (option.type) {
        case IP_ADDRESSES:
            put_addresses(out, option);
            break;
        case IP_COMPRESSION_PROTOCOL:
            put_compression(out, option);
            break;
        default:
            put_address_option(out, option);
            break;
    }
}

void dump_ipcp(const control_packet& packet) {
    print<"\t     ID %d IPCP %s\n">(packet.identifier, control_code_name(packet.code, HIGHEST_CODE));
    walk_options(packet.data, print_option);
}

}  // namespace ifwatch
