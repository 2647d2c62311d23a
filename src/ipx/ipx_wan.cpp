#include "ipx/ipx_wan.h"

#include <string_view>

#include "base/names.h"
#include "base/print.h"
#include "ipx/address.h"

namespace ifwatch {

namespace {

// Message:  0 "WASM"   4 packet type   5 WNode ID (4)   9 sequence number   10 number of options   11 options
// Option:   0 type     1 accept flag   2 data length (2, network order)     4 data

constexpr int HEADER_LENGTH = 11;
constexpr int OPTION_HEADER_LENGTH = 4;
constexpr int ROUTER_NAME_AT = 6;
constexpr int ROUTER_NAME_END = 52;
constexpr std::string_view IDENTIFIER = "WASM";

constexpr int NAK = 0xFF;
constexpr table_text PACKET_TYPES[] = {
    "Timer Request",    "Timer Response",           "Info Request",  "Info Response",
    "NLSP information", "NLSP raw throughput data", "Delay Request", "Delay Response",
};

constexpr int PADDING = 0xFF;
constexpr table_text OPTIONS[] = {
    "routing type", "RIP/SAP info", "NLSP info", "NLSP throughput", "extended node id", "node number", "compression",
};

constexpr table_text ROUTING_TYPES[] = {
    "RIP", "NLSP", "unnumbered RIP", "on demand static routing", "client router connection",
};

void dump_packet_type(int type) {
    print<"\tPacket type: %s\n">(type == NAK ? "NAK" : name_at(PACKET_TYPES, type, "unknown"));
}

void dump_routing_type(octets data) {
    print<"  ">();
    print_named(name_at(ROUTING_TYPES, data[0], "unknown 0x%x"), data[0]);
    print<"\n">();
}

void dump_rip_sap_info(octets data) {
    print<"\t\t\tLink Delay %d\n">(data.be16(0));
    print<"\t\t\tCommon Network Number ">();
    print_ipx_network(data.skip(2));
    data.set(ROUTER_NAME_END, 0);
    print<"\n\t\t\tRouter Name %s\n">(data.text(ROUTER_NAME_AT, ROUTER_NAME_END - ROUTER_NAME_AT));
}

void dump_extended_node_id(octets data) {
    print<"  ">();
    print_ipx_network(data);
    print<"\n">();
}

void dump_node_number(octets data) {
    // The colon behind the second octet is missing from what this prints.
    print<"  %x:%x%x:%x:%x:%x\n">(data[0], data[1], data[2], data[3], data[4], data[5]);
}

void dump_padding(octets /*data*/) { print<"\t\t\tPadding\n">(); }

struct option_printer {
    int type;
    void (*dump)(octets data);
};

// The other types print only their name.
constexpr option_printer OPTION_PRINTERS[] = {
    {0, dump_routing_type}, {1, dump_rip_sap_info},  {4, dump_extended_node_id},
    {5, dump_node_number},  {PADDING, dump_padding},
};

void dump_option(octets option) {
    const int type = option[0];
    if (const table_text name = name_at(OPTIONS, type)) {
        print<"\t\t\t%s: ">(name);
    } else if (type != PADDING) {
        print<"\t\t\tunknown option 0x%x\n">(type);
    }
    for (const option_printer& printer : OPTION_PRINTERS) {
        if (printer.type == type) {
            printer.dump(option.skip(OPTION_HEADER_LENGTH));
        }
    }
    print<"\t\t\toption is %saccepted\n\n">(option[1] == 1 ? "" : "not ");
}

void dump_options(octets options, int count) {
    if (count == 0) {
        print<"\t\tno options\n">();
        return;
    }
    print<"\t\t%d %s:\n">(count, count == 1 ? "option" : "options");
    for (; count > 0 && options.held() > 0; --count) {
        dump_option(options);
        options = options.skip(OPTION_HEADER_LENGTH + options.be16(2));
    }
}

}  // namespace

void dump_ipx_wan(octets message) {
    if (message.length < HEADER_LENGTH) {
        print<"\t\tmessage too short!\n">();
        return;
    }
    if (message.text(0, 4) != IDENTIFIER) {
        print<"\t\tbroken WAN 2 identifier\n">();
    }
    dump_packet_type(message[4]);
    print<"\t\tWNode ID: ">();
    print_ipx_network(message.skip(5));
    print<"\n\t\tSequence Number %d\n">(message[9]);
    dump_options(message.skip(HEADER_LENGTH), message[10]);
}

}  // namespace ifwatch
