#include "lan/pppoe.h"

#include <algorithm>

#include "base/names.h"
#include "base/print.h"
#include "lan/ethertype.h"

namespace ifwatch {

namespace {

constexpr int HEADER_LENGTH = 6;
constexpr int TAG_HEADER_LENGTH = 4;
constexpr int TEXT_MAX = 255;

constexpr named_value CODES[] = {
    {0x00, ""},
    {0x07, "             Active Discovery Offer\n"},
    {0x09, "             Active Discovery Initiation\n"},
    {0x19, "             Active Discovery Request\n"},
    {0x65, "             Active Discovery Session-confirmation\n"},
    {0xA7, "             Active Discovery Terminate\n"},
};

constexpr int TAG_END_OF_LIST = 0x0000;
constexpr named_value TEXT_TAGS[] = {{0x0101, "Service-Name"}, {0x0102, "AC-Name"}};
constexpr named_value OCTET_TAGS[] = {
    {0x0103, "Host-Uniq"},        {0x0104, "AC-Cookie"},          {0x0105, "Vendor-specific"},
    {0x0110, "Relay-Session-ID"}, {0x0201, "Service-Name-Error"}, {0x0202, "AC-System-Error"},
    {0x0203, "Generic-Error"},
};

void dump_header(octets packet, bool discovery) {
    print<"             PPP over Ethernet - %s stage\n">(discovery ? "discovery" : "session");
    print<"             Version %d Type %d Session ID %d\n">(packet[0] >> 4, packet[0] & 0xF, packet.be16(2));
    print_named(value_name(CODES, packet[1], "             Code %02x unknown\n"), packet[1]);
}

octets payload_of(octets packet) {
    const octets rest = packet.skip(HEADER_LENGTH);
    const int payload_length = packet.be16(4);
    if (payload_length <= rest.length) {
        return rest.at(0, payload_length);
    }
    print<"             PPPoE message too short (%d)\n">(rest.length);
    return rest;
}

void dump_tag(int type, octets value) {
    if (type == TAG_END_OF_LIST) {
        print<"                End-OF-List\n">();
    } else if (const table_text text_tag = value_name(TEXT_TAGS, type)) {
        print<"                %s <%s>\n">(text_tag, value.text(0, std::min(value.length, TEXT_MAX)));
    } else if (const table_text octet_tag = value_name(OCTET_TAGS, type)) {
        print<"                %s %02x %02x %02x %02x\n">(octet_tag, value[0], value[1], value[2], value[3]);
    } else {
        print<"                unknown tag (size %d): %04x\n">(value.length, type);
    }
}

}  // namespace

table_text pppoe_tag_name(int type) { return value_name(OCTET_TAGS, type, value_name(TEXT_TAGS, type)); }

void dump_pppoe_tags(octets tags) {
    while (tags.length > 0 && tags.held() > 0) {
        const int tag_length = tags.be16(2);
        dump_tag(tags.be16(0), tags.skip(TAG_HEADER_LENGTH).cut(tag_length));
        tags = tags.skip(TAG_HEADER_LENGTH + tag_length);
    }
}

void dump_pppoe(octets packet, display_context& context, int ethertype) {
    const bool discovery = ethertype == ETHERTYPE_PPPOE_DISCOVERY;
    dump_header(packet, discovery);
    const octets payload = payload_of(packet);
    if (discovery) {
        dump_pppoe_tags(payload);
    } else {
        dump_ethertype(payload, context, KEY_PPP);
    }
}

}  // namespace ifwatch
