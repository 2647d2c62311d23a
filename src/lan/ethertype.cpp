#include "lan/ethertype.h"

#include "display/display_context.h"
#include "display/mode_flags.h"
#include "inet/arp.h"
#include "inet/ip.h"
#include "ipx/ipx.h"
#include "lan/ethernet.h"
#include "lan/pppoe.h"
#include "ppp/ppp.h"

namespace ifwatch {

namespace {

constexpr int PPP_PROTOCOL_LENGTH = 2;
constexpr int LLC_SAP_IPX = 0xE0;

void dump_ip_payload(octets payload, display_context& context, int /*type*/) { dump_ip(payload, context); }

void dump_arp_payload(octets payload, display_context& /*context*/, int /*type*/) { dump_arp(payload); }

void dump_ipx_payload(octets payload, display_context& /*context*/, int /*type*/) { dump_ipx(payload); }

void dump_bridged_frame(octets payload, display_context& context, int /*type*/) {
    if (context.nesting >= MAX_NESTING) {
        return;
    }
    ++context.nesting;
    dump_ethernet(payload, context);
    --context.nesting;
}

void dump_ppp_payload(octets payload, display_context& context, int /*type*/) {
    if (dump_ppp(payload) == 0 && (context.mode_flags & MODE_IP) != 0) {
        dump_ip(payload.skip(PPP_PROTOCOL_LENGTH), context);
    }
}

struct payload_decoder {
    int type;
    std::uint32_t needed_flag;  // 0: always decoded
    void (*dump)(octets payload, display_context& context, int type);
};

constexpr payload_decoder DECODERS[] = {
    {ETHERTYPE_IP, MODE_IP, dump_ip_payload},
    {KEY_BRIDGED_FCS, 0, dump_bridged_frame},
    {KEY_BRIDGED, 0, dump_bridged_frame},
    {KEY_PPP, 0, dump_ppp_payload},
    {LLC_SAP_IPX, MODE_IPX, dump_ipx_payload},
    {ETHERTYPE_IPX, MODE_IPX, dump_ipx_payload},
    {ETHERTYPE_ARP, MODE_IP, dump_arp_payload},
    {ETHERTYPE_RARP, MODE_IP, dump_arp_payload},
    {ETHERTYPE_PPPOE_DISCOVERY, MODE_PPP, dump_pppoe},
    {ETHERTYPE_PPPOE_SESSION, MODE_PPP, dump_pppoe},
};

}  // namespace

void dump_ethertype(octets payload, display_context& context, int type) {
    for (const payload_decoder& decoder : DECODERS) {
        const bool wanted = decoder.needed_flag == 0 || (context.mode_flags & decoder.needed_flag) != 0;
        if (decoder.type == type && wanted) {
            decoder.dump(payload, context, type);
            return;
        }
    }
}

}  // namespace ifwatch
