#include "ppp/ccp.h"

#include "base/print.h"
#include "ppp/option_walk.h"

namespace ifwatch {

namespace {

constexpr int HIGHEST_CODE = 16;
constexpr int CONFIGURE_REQUEST = 1;
constexpr int CONFIGURE_REJECT = 4;
constexpr int RESET_REQUEST = 14;
constexpr int RESET_ACK = 15;

// Options of which only the name is shown. The newline in a name comes in addition to the one behind each option.
constexpr named_value OTHER_OPTIONS[] = {
    {0, "OUI;\n"},
    {1, "Predictor type 1;\n"},
    {2, "Predictor type 2;\n"},
    {3, "Puddle Jumper;\n"},
    {16, "Hewlett-Packard PPC;\n"},
    {19, "Gandalf FZA;\n"},
    {20, "V.42bis compression;\n"},
    {21, "BSD LZW Compress;\n"},
};

constexpr table_text STAC_CHECK_MODES[] = {"None", "LCB", "CRC", "Sequence Number", "Extended Mode"};

constexpr table_text LZS_DCP_CHECK_MODES[] = {
    "0 (None)",
    "1 (LCB)",
    "2 (Sequence Number)",
    "3 (Sequence Number + LCB)",
};

constexpr table_text LZS_DCP_PROCESS_MODES[] = {"0 (None)", "1 (Process-Uncompressed)"};

struct mppe_strength {
    std::uint32_t bit;
    int key_bits;
};

constexpr mppe_strength MPPE_STRENGTHS[] = {{0x20, 40}, {0x40, 128}, {0x80, 56}};
constexpr std::uint32_t MPPC_COMPRESSION = 0x01;
constexpr std::uint32_t MPPE_STATELESS = 0x01000000;

void print_stac_lzs(ppp_option& option) {
    const int check_mode = option.data[2];
    print<"Stac Electronics LZS;\n">();
    print<"\t\tHistory Count %d;\n">(option.data.be16(0));
    if (const table_text name = name_at(STAC_CHECK_MODES, check_mode)) {
        print<"\t\tCheck Mode %d (%s)">(check_mode, name);
    } else {
        print<"\t\tunknown Check Mode %d">(check_mode);
    }
}

void print_mppe(ppp_option& option) {
    const std::uint32_t supported = option.data.be32(0);
    const char* const stateless = (supported & MPPE_STATELESS) != 0 ? "stateless " : "";
    print<"MPPC/MPPE;">();
    if ((supported & MPPC_COMPRESSION) != 0) {
        print<"\n\t\tMPPC compression;">();
    }
    for (const mppe_strength& strength : MPPE_STRENGTHS) {
        if ((supported & strength.bit) != 0) {
            print<"\n\t\tMPPE %sencryption (%d bit)">(stateless, strength.key_bits);
        }
    }
}

void print_lzs_dcp(ppp_option& option) {
    const int check_mode = option.data[2];
    const int process_mode = option.data[3];
    print<"LZS-DCP;\n">();
    print<"\t\tHistory Count %d;\n">(option.data.be16(0));
    print<"\t\tCheck Mode ">();
    print_named(name_at(LZS_DCP_CHECK_MODES, check_mode, "unknown (%d)"), static_cast<std::uint32_t>(check_mode));
    print<";\n\t\tProcess Mode ">();
    print_named(name_at(LZS_DCP_PROCESS_MODES, process_mode, "unknown (%d)"), static_cast<std::uint32_t>(process_mode));
}

void print_other(ppp_option& option) {
    print_named(value_name(OTHER_OPTIONS, option.type, "unknown code %d"), static_cast<std::uint32_t>(option.type));
}

constexpr option_kind OPTIONS[] = {
    {17, print_stac_lzs},
    {18, print_mppe},
    {23, print_lzs_dcp},
};

void print_option(ppp_option& option) {
    print<"\t\t">();
    find_option(OPTIONS, option.type, print_other)(option);
    print<";\n">();
}

}  // namespace

void dump_ccp(const control_packet& packet) {
    print<"\t     ID %d CCP %s\n">(packet.identifier, control_code_name(packet.code, HIGHEST_CODE));
    if (packet.code >= CONFIGURE_REQUEST && packet.code <= CONFIGURE_REJECT) {
        walk_options(packet.data, print_option);
    } else if (packet.code == RESET_REQUEST || packet.code == RESET_ACK) {
        print<"\t\tHistory Number %d;\n">(packet.data.be16(0));
    }
}

}  // namespace ifwatch
