#include "ppp/bacp.h"

#include "base/print.h"
#include "ppp/option_walk.h"

namespace ifwatch {

namespace {

constexpr int LAST_CODE_WITH_OPTIONS = 7;
constexpr int FAVORED_PEER = 1;

constexpr table_text CODE_NAMES[] = {
    "Unknown",          "Configure-Request", "Configure-Ack", "Configure-Nak",
    "Configure-Reject", "Terminate-Request", "Terminate-Ack", "reserved",
};

void print_option(ppp_option& option) {
    if (option.type == FAVORED_PEER) {
        print<"\t\tFavored-Peer;\n">();
    }
}

}  // namespace

void dump_bacp(const control_packet& packet) {
    print<"\t     ID %d BACP %s\n">(packet.identifier, name_at(CODE_NAMES, packet.code, CODE_NAMES[0]));
    if (packet.code <= LAST_CODE_WITH_OPTIONS) {
        walk_options(packet.data, print_option);
    }
}

}  // namespace ifwatch
