#include "eft/eft_field.h"

#include "base/print.h"

namespace ifwatch {

void print_eft_label(table_text label) { print<"\n\t\t%-24.24s">(label); }

void print_eft_characters(octets value) {
    for (const std::uint8_t octet : value.run(0, value.length)) {
        print<"%c">(octet);
    }
}

void print_eft_octets(octets value) {
    for (const std::uint8_t octet : value.run(0, value.length)) {
        print<"%02x ">(octet);
    }
}

std::uint32_t eft_number(octets value) {
    std::uint32_t number = 0;
    for (const std::uint8_t octet : value.run(0, value.length)) {
        number = number << 8 | octet;
    }
    return number;
}

void print_eft_flags(std::span<const table_text> texts, int bits) {
    for (const table_text text : texts) {
        if (text && (bits & 1) != 0) {
            print<"%s">(text);
        }
        bits >>= 1;
    }
}

}  // namespace ifwatch
