#include "ppp/cbcp.h"

#include "base/print.h"
#include "ppp/option_walk.h"

namespace ifwatch {

namespace {

constexpr int PSTN_ISDN = 1;

constexpr table_text CODE_NAMES[] = {"Unknown", "Callback Request", "Callback Response", "Callback Ack", "reserved"};

void print_no_callback(ppp_option& /*option*/) { print<"\t\tNo Callback\n">(); }

void print_user_number(ppp_option& option) {
    const octets data = option.data;
    option.passed = 0;
    print<"\t\tCallback Type 2 (user-specifiable number)\n">();
    if (option.length > 2) {
        print<"\t\tCallback Delay: %d\n">(data[option.passed++]);
    }
    if (option.length <= 4) {
        return;
    }
    const int address_type = data[option.passed++];
    if (address_type != PSTN_ISDN) {
        print<"\t\tunknown Address Type %d\n">(address_type);
        return;
    }
    print<"\t\tAddress Type 1 (PSTN/ISDN)\n">();
    if (option.length > 5) {
        print<"\t\tCallback Number: %s\n">(data.text(option.passed, data.held()));
        option.passed += option.length - 4;
    }
}

/// The walk reads the next option from the data of this one.
void print_other_number(ppp_option& option) {
    print<"\t\tCallback Type %d\n">(option.type);
    option.passed = 0;
}

void print_unknown(ppp_option& option) { print<"\t\tunknown Callback Type %d;\n">(option.type); }

constexpr option_kind OPTIONS[] = {
    {1, print_no_callback},
    {2, print_user_number},
    {3, print_other_number},
    {4, print_other_number},
};

void print_option(ppp_option& option) { find_option(OPTIONS, option.type, print_unknown)(option); }

}  // namespace

void dump_cbcp(const control_packet& packet) {
    print<"\t     ID %d CBCP %s\n">(packet.identifier, name_at(CODE_NAMES, packet.code, CODE_NAMES[0]));
    walk_options(packet.data, print_option);
}

}  // namespace ifwatch
