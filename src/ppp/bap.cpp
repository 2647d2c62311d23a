#include "ppp/bap.h"

#include "base/print.h"
#include "ppp/option_walk.h"

namespace ifwatch {

namespace {

constexpr int LAST_CODE_WITH_OPTIONS = 7;  // the Call-Status Response (8) has no options to show
constexpr int LINK_TYPE_ISDN = 0;

constexpr table_text CODE_NAMES[] = {
    "Unknown",
    "Call Request",
    "Call Response",
    "Callback Request",
    "Callback Response",
    "Link-Drop-Query Request",
    "Link-Drop-Query Response",
    "Call-Status Indication",
    "Call-Status Response",
    "reserved",
};

constexpr table_text RESULTS[] = {"Request-Ack", "Request-Nak", "Request-Rej"};

// Options of which only the name is shown.
constexpr named_value OTHER_OPTIONS[] = {
    {2, "\t\tPhone-Delta;\n"},
    {3, "\t\tNo-Phone-Number;\n"},
    {4, "\t\tReason;\n"},
    {6, "\t\tCall-Status;\n"},
};

constexpr bool has_result(int code) { return code == 2 || code == 4 || code == 6; }

void print_link_type(ppp_option& option) {
    if (option.data[2] == LINK_TYPE_ISDN) {
        print<"\t\tLink-Type: ISDN (%d kbps)\n">(option.data.be16(0));
    } else {
        print<"\t\tLink-Type;\n">();
    }
}

void print_link_discriminator(ppp_option& option) { print<"\t\tLink Discriminator %d;\n">(option.data.be16(0)); }

void print_other(ppp_option& option) { print<"%s">(value_name(OTHER_OPTIONS, option.type, "")); }

constexpr option_kind OPTIONS[] = {
    {1, print_link_type},
    {5, print_link_discriminator},
};

void print_option(ppp_option& option) { find_option(OPTIONS, option.type, print_other)(option); }

}  // namespace

void dump_bap(const control_packet& packet) {
    print<"\t     ID %d BAP %s\n">(packet.identifier, name_at(CODE_NAMES, packet.code, CODE_NAMES[0]));
    if (packet.code > LAST_CODE_WITH_OPTIONS) {
        return;
    }
    octets options = packet.data;
    if (has_result(packet.code)) {
        print<"\t\t%s\n">(name_at(RESULTS, options[0], "Request-Full-Nak"));
        options = options.skip(1);
    }
    walk_options(options, print_option);
}

}  // namespace ifwatch
