#include "lan/ethernet.h"

#include <algorithm>
#include <iterator>

#include "base/print.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "lan/ethertype.h"
#include "lan/llc.h"
#include "lan/stations.h"

namespace ifwatch {

namespace {

constexpr int HEADER_LENGTH = 14;
constexpr int LONGEST_802_3 = 1500;

constexpr int KNOWN_TYPES[] = {
    ETHERTYPE_IP,
    ETHERTYPE_IPX,
    ETHERTYPE_ARP,
    ETHERTYPE_SNMP,
    ETHERTYPE_RARP,
    ETHERTYPE_PPPOE_DISCOVERY,
    ETHERTYPE_PPPOE_SESSION,
};

int known_type(int type) {
    const auto* const known = std::ranges::find(KNOWN_TYPES, type);
    return known != std::end(KNOWN_TYPES) ? *known : KEY_NONE;
}

void dump_header(octets frame, int type_or_length) {
    print<"      ">();
    print_stations(frame);
    if (type_or_length <= LONGEST_802_3) {
        print<"  length %d\n">(type_or_length);
    } else {
        print<"  protocol 0x%04x\n">(type_or_length);
    }
}

}  // namespace

void dump_ethernet(octets frame, display_context& context) {
    const int type_or_length = frame.be16(12);
    if ((context.mode_flags & MODE_LAYER2) != 0) {
        dump_header(frame, type_or_length);
    }
    if (type_or_length > LONGEST_802_3) {
        dump_ethertype(frame.skip(HEADER_LENGTH), context, known_type(type_or_length));
        return;
    }
    dump_llc_frame(frame.at(HEADER_LENGTH, type_or_length), context);
}

}  // namespace ifwatch
