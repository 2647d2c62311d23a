#include "ppp/lcp.h"

#include <algorithm>
#include <iterator>

#include "base/print.h"

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

void put_async_map(text_sink& out, const ppp_option& option) {
    const octets data = option.data;
    print_to<"Async-Map 0x%02x%02x%02x%02x;">(out, data[0], data[1], data[2], data[3]);
}

void put_authentication(text_sink& out, const ppp_option& option) {
    const octets data = option.data;
    // The low octet is 0x23 in both protocol numbers, 0xC023 and 0xC223.
    const table_text protocol =
        data[1] == 0x23 ? value_name(AUTHENTICATION_PROTOCOLS, data[0], "unknown") : table_text("strange");
    print_to<"Authentication Protocol %s;">(out, protocol);
    if (option.length > 4) {
        print_to<" Encrypt %s;">(out, value_name(CHAP_ALGORITHMS, data[2], "unknown"));
    }
}

void put_magic_number(text_sink& out, const ppp_option& option) {
    const octets data = option.data;
    print_to<"Magic-Number 0x%02x%02x%02x%02x;">(out, data[0], data[1], data[2], data[3]);
}

void put_fcs_alternatives(text_sink& out, const ppp_option& option) {
    put(out, "FCS-Alternatives: ");
    for (const named_value& sequence : CHECK_SEQUENCES) {
        if ((option.data[0] & sequence.value) != 0) {
            put(out, sequence.name.view());
        }
    }
}

void put_callback(text_sink& out, const ppp_option& option) {
    const int operation = option.data[0];
    if (operation == CALLBACK_NUMBER) {
        put(out, "Callback Number (E.164) ");
        for (const std::uint8_t digit : option.data.run(1, option.data.length - 1)) {
            put(out, static_cast<char>(digit));
        }
        put(out, ';');
    } else if (operation == CALLBACK_BY_CBCP) {
        put(out, "Callback Control Protocol (CBCP);");
    } else {
        print_to<"Callback Operation %d;">(out, operation);
    }
}

void put_named_option(text_sink& out, const ppp_option& option) {
    if (const table_text number = value_name(NUMBER_OPTIONS, option.type)) {
        print_named_to(out, number, option.data.be16(0));
    } else {
        print_named_to(out, value_name(OTHER_OPTIONS, option.type, "unknown code %d;"),
                       static_cast<std::uint32_t>(option.type));
    }
}

struct option_text {
    int type;
    void (*put)(text_sink& out, const ppp_option& option);
};

constexpr option_text OPTIONS[] = {
    {2, put_async_map}, {3, put_authentication}, {5, put_magic_number}, {9, put_fcs_alternatives}, {13, put_callback},
};

void print_option(ppp_option& option) {
    print<"\t\t">();
    put_lcp_option(standard_output, option);
    print<"\n">();
}

}  // namespace

void put_lcp_option(text_sink& out, const ppp_option& option) {
    const auto* const found = std::ranges::find(OPTIONS, option.type, &option_text::type);
    (found != std::end(OPTIONS) ? found->put : put_named_option)(out, option);
}

void dump_lcp(const control_packet& packet) {
    print<"\t     ID %d LCP %s\n">(packet.identifier, control_code_name(packet.code, HIGHEST_CODE));
    if (packet.code <= CODE_REJECT) {
        walk_options(packet.data, print_option);
    }
}

}  // namespace ifwatch
