#include "fax/t30_bitfields.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "base/names.h"
#include "base/print.h"

namespace ifwatch {

namespace {

/// A field of the capabilities, by its T.30 bit number (from 1). The text of a field of several bits has a line for
/// its title and one for each value.
struct capability_field {
    int bit = 0;
    int width = 0;
    table_text dis;  // in DIS and DTC; absent at the extension bits only
    table_text dcs;  // in DCS and CTC
};

constexpr capability_field CAPABILITIES[] = {
    {1, 1, "Transmitter - T.2 operation", nullptr},
    {2, 1, "Receiver - T.2 operation", "Receiver - T.2 operation"},
    {3, 1, "T.2 IOC = 176", "T.2 IOC = 176"},
    {4, 1, "Transmitter - T.3 operation", nullptr},
    {5, 1, "Receiver - T.3 operation", "Receiver - T.3 operation"},
    {9, 1, "Transmitter - T.4 operation", nullptr},
    {10, 1, "Receiver - T.4 operation", "Receiver - T.4 operation"},
    {11, 4,
     "Data signalling rate capability\n"
     "V.27ter fallback mode\n"
     "V.29\n"
     "V.27ter\n"
     "V.27ter and V.29\n"
     "4\n"
     "5\n"
     "6\n"
     "V.27ter, V.29 and V.33\n"
     "8\n"
     "9\n"
     "10\n"
     "V.27ter, V.29, V.33 and V.17\n"
     "12\n"
     "13\n"
     "14\n"
     "15",
     "Data signalling rate\n"
     "2400 bit/s V.27ter\n"
     "9600 bit/s V.29\n"
     "4800 bit/s V.27ter\n"
     "7200 bit/s V.29\n"
     "14400 bit/s V.33\n"
     "5\n"
     "12000 bit/s V.33\n"
     "7\n"
     "14400 bit/s V.17\n"
     "9600 bit/s V.17\n"
     "12000 bit/s V.17\n"
     "7200 bit/s V.17\n"
     "12\n"
     "13\n"
     "14\n"
     "15"},
    {15, 1, "Vertical resolution = 7.7 line/mm", "Vertical resolution = 7.7 line/mm"},
    {16, 1, "two dimensional coding capability", "two dimensional coding"},
    {17, 2,
     "Recording width capabilities\n"
     "215mm\n"
     "215mm & 255mm\n"
     "215mm & 255mm & 303mm\n"
     "Invalid",
     "Recording width\n"
     "215mm\n"
     "255mm\n"
     "303mm\n"
     "Invalid"},
    {19, 2,
     "Maximum recording length capability\n"
     "A4(297mm)\n"
     "A4(297mm) & B4(364mm)\n"
     "Unlimited\n"
     "Invalid",
     "Maximum recording length\n"
     "A4(297mm)\n"
     "B4(364mm)\n"
     "Unlimited\n"
     "Invalid"},
    {21, 3,
     "Minimum receiver scan line time capability\n"
     "20ms\n"
     "5ms\n"
     "10ms\n"
     "20ms T7.7 = 1/2 T3.85\n"
     "40ms\n"
     "40ms T7.7 = 1/2 T3.85\n"
     "10ms T7.7 = 1/2 T3.85\n"
     "0ms",
     "Minimum scan line time\n"
     "20ms\n"
     "5ms\n"
     "10ms\n"
     "20ms\n"
     "40ms\n"
     "40ms\n"
     "10ms\n"
     "0ms"},
    {24, 1, nullptr, nullptr},
    {25, 1, "2400 bit/s handshaking", "2400 bit/s handshaking"},
    {26, 1, "Uncompressed mode", "Uncompressed mode"},
    {27, 1, "Error correction mode", "Error correction mode"},
    {28, 1, "", "ECM Frame size = 64 octetts"},
    {29, 1, "Error limiting mode ", "Error limiting mode"},
    {30, 1, "Reserved for G4 capability on PSTN", "Reserved for G4 capability on PSTN"},
    {31, 1, "T.6 coding capability", "T.6 coding enabled"},
    {32, 1, nullptr, nullptr},
    {33, 1, "Previous recording width capability is invalid", "Previous recording width is invalid"},
    {34, 1, "Recording width capability 151mm", "Middle 1216 pixels of 1728"},
    {35, 1, "Recording width capability 107mm", "Middle 864 pixels of 1728"},
    {36, 1, "Recording width capability 151mm 1728pixels", "Invalid"},
    {37, 1, "Recording width capability 107mm 1728pixels", "Invalid"},
    {40, 1, nullptr, nullptr},
    {41, 1, "Resolution = 8x 15.4 l/mm", "Resolution = 8x 15.4 l/mm"},
    {42, 1, "300x300 pixels/in", "300x300 pixels/in"},
    {43, 1, "Resolution = 16x 15.4 l/mm", "Resolution = 16x 15.4 l/mm"},
    {44, 1, "Inch-based resolution preferred", "Inch-based resolution"},
    {45, 1, "Metric-based resolution preferred", nullptr},
    {46, 1, "MSLT", nullptr},
    {47, 1, "Selective polling", nullptr},
    {48, 1, nullptr, nullptr},
    {49, 1, "Subadressing capability", nullptr},
    {50, 1, "Password capability", nullptr},
    {51, 1, "Capable to emit data file", nullptr},
    {52, 1, "Reserved FSI", "Reserved FSI"},
    {53, 1, "Binary File Transfer", "Binary File Transfer"},
    {54, 1, "Document Transfer Mode", "Document Transfer Mode"},
    {55, 1, "Edifact Transfer", "Electronic Data Transfer"},
    {56, 1, nullptr, nullptr},
    {57, 1, "Basic Transfer Mode", "Basic Transfer Mode"},
    {59, 1, "Capable to emit character file", nullptr},
    {60, 1, "Character Mode", "Character Mode"},
    {61, 1, "Reserved for Control Document", "Reserved for Control Document"},
    {62, 1, "Mixed Mode", "Mixed Mode"},
    {64, 1, nullptr, nullptr},
    {65, 1, "Processable Mode", "Processable Mode"},
    {66, 1, "Digital Network Capability", "Digital Network Capability"},
    {67, 1, "Half-duplex operation only", "Half-duplex operation"},
    {67, 1, "Full and half-duplex operation", "Full-duplex operation"},
};

constexpr int WIDEST_FIELD = 8;

std::string_view take_line(std::string_view& rest) {
    const std::size_t line_end = std::min(rest.find('\n'), rest.size());
    const std::string_view line = rest.substr(0, line_end);
    rest.remove_prefix(std::min(line_end + 1, rest.size()));
    return line;
}

/// The line behind the title that names a value; empty when the text has too few lines.
std::string_view value_line(std::string_view rest, int value) {
    for (; value > 0 && !rest.empty(); --value) {
        take_line(rest);
    }
    return take_line(rest);
}

/// Prints the field's title and the line that names its value; nothing when the text has too few lines.
void print_bitfield_value(table_text text, int value) {
    std::string_view rest = text.view();
    const std::string_view title = take_line(rest);
    if (const std::string_view name = value_line(rest, value); !name.empty()) {
        print<"\t\t%s = %s\n">(title, name);
    }
}

bool ends_walk(const capability_field& field, int value) { return value == -1 || (!field.dis && value == 0); }

}  // namespace

std::string_view t30_rate_name(octets dcs) {
    constexpr int rate_bit = 11;
    const auto* const field = std::ranges::find(CAPABILITIES, rate_bit, &capability_field::bit);
    const int value = get_bitfield(dcs, rate_bit - 1, field->width);
    std::string_view lines = field->dcs.view();
    take_line(lines);
    return value >= 0 ? value_line(lines, value) : std::string_view();
}

int get_bitfield(octets field, int bit_index, int width) {
    // The bound adds the length in octets where the width would be expected.
    const std::int64_t length = field.length;
    if (width > WIDEST_FIELD || bit_index + length > 8 * length) {
        return -1;
    }
    return field[bit_index / 8] >> (bit_index % 8) & ((1 << width) - 1);
}

void dump_t30_bitfields(octets fif, bool dcs) {
    for (const capability_field& field : CAPABILITIES) {
        const int value = get_bitfield(fif, field.bit - 1, field.width);
        if (ends_walk(field, value)) {
            return;
        }
        const table_text text = dcs ? field.dcs : field.dis;
        if (!text) {
            continue;
        }
        if (field.width > 1) {
            print_bitfield_value(text, value);
        } else if (value != 0) {
            print<"\t\t%s\n">(text);
        }
    }
}

}  // namespace ifwatch
