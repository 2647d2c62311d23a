#include "lan/token_ring.h"

#include "base/names.h"
#include "base/print.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "lan/llc.h"
#include "lan/stations.h"

namespace ifwatch {

namespace {

constexpr int HEADER_LENGTH = 14;
constexpr int ROUTING_CONTROL_LENGTH = 2;
constexpr int SEGMENT_LENGTH = 2;

// Other indicators print nothing, and so leave the line open.
constexpr named_value BROADCASTS[] = {
    {0, "nonbroadcast\n"},
    {4, "all-routes broadcast, nonbroadcast return\n"},
    {6, "single-route broadcast, all routes broadcast return\n"},
    {7, "single-route broadcast, nonbroadcast return\n"},
};

bool has_routing(octets frame) { return (frame[8] & 0x80) != 0; }

int routing_length(octets frame) { return has_routing(frame) ? frame[HEADER_LENGTH] & 0x1F : 0; }

void dump_routing(octets routing, int length) {
    print<"      RIF[%d] ">(length);
    print<"D=%d LF=%d ">(routing[1] >> 7, routing[1] >> 4 & 7);
    print<"%s">(value_name(BROADCASTS, routing[0] >> 5, ""));
    if (length <= ROUTING_CONTROL_LENGTH) {
        return;
    }
    print<"SEGMENTS NUMBERS: ">();
    octets segments = routing.at(ROUTING_CONTROL_LENGTH, length - ROUTING_CONTROL_LENGTH);
    for (; segments.within() >= SEGMENT_LENGTH; segments = segments.skip(SEGMENT_LENGTH)) {
        print<"0x%x ">(segments.le16(0));
    }
    print<"\n">();
}

void dump_header(octets frame) {
    print<"      AC=0x%x FC=0x%x ">(frame[0], frame[1]);
    print_stations(frame.skip(2));
    print<"\n">();
    if (has_routing(frame)) {
        dump_routing(frame.skip(HEADER_LENGTH), routing_length(frame));
    }
}

}  // namespace

int token_ring_header_length(octets frame) { return HEADER_LENGTH + routing_length(frame); }

void dump_token_ring(octets frame, display_context& context) {
    if ((context.mode_flags & MODE_LAYER2) != 0) {
        dump_header(frame);
    }
    dump_llc_frame(frame.skip(token_ring_header_length(frame)), context);
}

}  // namespace ifwatch
