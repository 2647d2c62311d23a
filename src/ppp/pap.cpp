#include "ppp/pap.h"

#include "base/print.h"

namespace ifwatch {

namespace {

constexpr int AUTHENTICATE_REQUEST = 1;

constexpr named_value RESULTS[] = {
    {2, "Authenticate-Ack"},
    {3, "Authenticate-Nak"},
};

}  // namespace

std::string_view counted_string(octets source) {
    const int length = source[0];
    return length == 0 ? std::string_view("<none>") : source.text(1, length);
}

void dump_pap(const control_packet& packet) {
    const octets peer = packet.data;
    print<"\t     ID %d PAP ">(packet.identifier);
    if (packet.code == AUTHENTICATE_REQUEST) {
        print<"Authenticate-Request Peer-ID %s">(counted_string(peer));
        print<" Password %s\n">(counted_string(peer.skip(1 + peer[0])));
    } else if (const table_text result = value_name(RESULTS, packet.code)) {
        print<"%s Message %s\n">(result, counted_string(packet.data));
    } else {
        print<"unknown code %d\n">(packet.code);
    }
}

}  // namespace ifwatch
