#include "ppp/lcp.h"

#include "base/print.h"
#include "ppp/option_walk.h"

namespace ifwatch {

namespace {

constexpr int HIGHEST_CODE = 16;
constexpr int CODE_REJECT = 7;

constexpr int CALLBACK_NUMBER = 3;  // callback operations
constexpr int CALLBACK_BY_CBCP = 6;

// Options of one 16-bit number.
constexpr named_value NUMBER_OPTIONS[] = {
    {1, "MRU %d;"},
    {17, "Multilink MRRU %d;"},
    {23, "Link Discriminator %d;"},
};

// Options of which only the name is shown.
constexpr named_value OTHER_OPTIONS[] = {
    {4, "Quality-Protocol;"},
    {7, "Protocol-Field-Compression;"},
    {8, "Address-Field-Compression;"},
    {10, "Self-Describing-Padding;"},
    {15, "Compound-Frames;"},
    {18, "Multilink Short Sequence Number;"},
    {19, "Multilink Endpoint Discriminator;"},
};

constexpr named_value AUTHENTICATION_PROTOCOLS[] = {
    {0xC0, "PAP"},
    {0xC2, "CHAP"},
};

constexpr named_value CHAP_ALGORITHMS[] = {
    {5, "MD5"},
    {128, "MS-CHAP"},
    {129, "MS-CHAP V2"},
};

constexpr named_value CHECK_SEQUENCES[] = {
    {0x01, "None; "},
    {0x02, "16-bit; "},
    {0x04, "32-bit; "},
};

void print_async_map(ppp_option& option) {
    const octets data = option.data;
    print<"Async-Map 0x%02x%02x%02x%02x;">(data[0], data[1], data[2], data[3]);
}

void print_authentication(ppp_option& option) {
    const octets data = option.data;
    // The low octet is 0x23 in both protocol numbers, 0xC023 and 0xC223.
    const table_text protocol =
        data[1] == 0x23 ? value_name(AUTHENTICATION_PROTOCOLS, data[0], "unknown") : table_text("strange");
    print<"Authentication Protocol %s;">(protocol);
    if (option.length > 4) {
        print<" Encrypt %s;">(value_name(CHAP_ALGORITHMS, data[2], "unknown"));
    }
}

void print_magic_number(ppp_option& option) {
    const octets data = option.data;
    print<"Magic-Number 0x%02x%02x%02x%02x;">(data[0], data[1], data[2], data[3]);
}

void print_fcs_alternatives(ppp_option& option) {
    print<"FCS-Alternatives: ">();
    for (const named_value& sequence : CHECK_SEQUENCES) {
        if ((option.data[0] & sequence.value) != 0) {
            print<"%s">(sequence.name);
        }
    }
}

void print_callback(ppp_option& option) {
    const int operation = option.data[0];
    if (operation == CALLBACK_NUMBER) {
        print<"Callback Number (E.164) ">();
        for (const std::uint8_t digit : option.data.run(1, option.data.length - 1)) {
            print<"%c">(digit);
        }
        print<";">();
    } else if (operation == CALLBACK_BY_CBCP) {
        print<"Callback Control Protocol (CBCP);">();
    } else {
        print<"Callback Operation %d;">(operation);
    }
}

void print_named_option(ppp_option& option) {
    if (const table_text number = value_name(NUMBER_OPTIONS, option.type)) {
        print_named(number, option.data.be16(0));
    } else {
        print_named(value_name(OTHER_OPTIONS, option.type, "unknown code %d;"),
                    static_cast<std::uint32_t>(option.type));
    }
}

constexpr option_kind OPTIONS[] = {
    {2, print_async_map},        {3, print_authentication}, {5, print_magic_number},
    {9, print_fcs_alternatives}, {13, print_callback},
};

void print_option(ppp_option& option) {
    print<"\t\t">();
    find_option(OPTIONS, option.type, print_named_option)(option);
    print<"\n">();
}

}  // namespace

void dump_lcp(const control_packet& packet) {
    print<"\t     ID %d LCP %s\n">(packet.identifier, control_code_name(packet.code, HIGHEST_CODE));
    if (packet.code <= CODE_REJECT) {
        walk_options(packet.data, print_option);
    }
}

}  // namespace ifwatch
