#include "lan/rfc1483.h"

#include <iterator>

#include "base/names.h"
#include "base/print.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "lan/ethertype.h"

namespace ifwatch {

namespace {

constexpr std::uint32_t LLC_SNAP = 0xAAAA03;
constexpr std::uint32_t LLC_ISO = 0xFEFE03;
constexpr int IPV4_FIRST_OCTET = 0x45;

constexpr int ORGANISATION_ROUTED = 0x000000;
constexpr int ORGANISATION_BRIDGED = 0x0080C2;
constexpr named_value ORGANISATIONS[] = {
    {ORGANISATION_BRIDGED, "Bridged Protocol"},
    {0x00005E, "VPN encapsulation"},
    {ORGANISATION_ROUTED, "Routed Protocol"},
};

// By protocol identifier; those without a name show their number.
constexpr table_text BRIDGED_PROTOCOLS[] = {
    nullptr, "Ethernet (FCS)",    "802.4 (FCS)",    "802.5 (FCS)",    "FDDI (FCS)",    "802.6 (FCS)",
    nullptr, "Ethernet (no FCS)", "802.4 (no FCS)", "802.5 (no FCS)", "FDDI (no FCS)", "802.6 (no FCS)",
    nullptr, "Fragments",         "BPDU",
};
constexpr int BRIDGED_PROTOCOL_COUNT = static_cast<int>(std::size(BRIDGED_PROTOCOLS));

constexpr encapsulation NOT_DECODED = {0, KEY_NONE};

struct nlpid {
    int value = 0;
    table_text name;
    int type = KEY_NONE;
};
constexpr nlpid NLPIDS[] = {{0xCC, "IP", ETHERTYPE_IP}, {0xCF, "PPP", KEY_PPP}};

encapsulation snap_payload(int organisation, int protocol) {
    if (organisation == ORGANISATION_ROUTED) {
        return {8, protocol};
    }
    if (organisation == ORGANISATION_BRIDGED && protocol < BRIDGED_PROTOCOL_COUNT) {
        return {10, protocol};  // two octets of padding
    }
    return NOT_DECODED;
}

encapsulation read_snap(octets frame, bool show) {
    const int organisation = static_cast<int>(frame.be24(3));
    const int protocol = frame.be16(6);
    if (show) {
        const table_text protocol_name =
            organisation == ORGANISATION_BRIDGED ? name_at(BRIDGED_PROTOCOLS, protocol) : nullptr;
        print<"      SNAP ">();
        print_named(value_name(ORGANISATIONS, organisation, "Organisation=0x%06x"), frame.be24(3));
        print<" ">();
        print_named(protocol_name ? protocol_name : "Type=0x%04x", frame.be16(6));
        print<"\n">();
    }
    return snap_payload(organisation, protocol);
}

encapsulation read_iso(octets frame, bool show) {
    for (const nlpid& known : NLPIDS) {
        if (known.value == frame[3]) {
            if (show) {
                print<"      LLC (iso) %s\n">(known.name);
            }
            return {4, known.type};
        }
    }
    if (show) {
        print<"      LLC (iso) NLPID=%d\n">(frame[3]);
    }
    return NOT_DECODED;
}

encapsulation read_routed(octets frame, bool show) {
    const bool ip = frame[0] == IPV4_FIRST_OCTET;
    if (show) {
        print<"      VC Multiplexing routed %s\n">(ip ? "IP" : "no IP");
    }
    return {0, ip ? ETHERTYPE_IP : KEY_PPP};
}

encapsulation read_bridged(bool show) {
    if (show) {
        print<"      VC Multiplexing bridged Ethernet\n">();
    }
    return {2, KEY_BRIDGED_FCS};
}

encapsulation read_encapsulation(octets frame, bool show) {
    switch (frame.be24(0)) {
        case LLC_SNAP:
            return read_snap(frame, show);
        case LLC_ISO:
            return read_iso(frame, show);
        default:
            return frame.be16(0) != 0 ? read_routed(frame, show) : read_bridged(show);
    }
}

}  // namespace

encapsulation rfc1483_encapsulation(octets frame) { return read_encapsulation(frame, false); }

void dump_rfc1483(octets frame, display_context& context) {
    const bool show = (context.mode_flags & MODE_LAYER2) != 0;
    const encapsulation found = read_encapsulation(frame, show);
    dump_ethertype(frame.skip(found.header_length), context, found.type);
}

}  // namespace ifwatch
