#include "x25/x25_fields.h"

#include <algorithm>

#include "base/print.h"

namespace ifwatch {

namespace {

void print_octets(octets field, int offset, int count) {
    for (const std::uint8_t octet : field.run(offset, count)) {
        print<"%02x ">(octet);
    }
    print<"\n">();
}

}  // namespace

void print_x25_digits(octets digits, int first, int count) {
    const int end = std::min(first + count, 2 * digits.held());
    for (int i = first; i < end; ++i) {
        print<"%x">(i % 2 == 0 ? digits[i / 2] >> 4 : digits[i / 2] & 0x0F);
    }
}

int dump_x25_addresses(octets field, int a_bit) {
    const int called = a_bit != 0 ? field[0] : field[0] & 0x0F;
    const int calling = a_bit != 0 ? field[1] : field[0] >> 4;
    const int lengths = a_bit != 0 ? 2 : 1;
    const octets digits = field.skip(lengths);
    if (called != 0) {
        print<"\t\t\tCalled Address = ">();
        print_x25_digits(digits, 0, called);
        print<"\n">();
    }
    if (calling != 0) {
        print<"\t\t\tCalling Address = ">();
        print_x25_digits(digits, called, calling);
        print<"\n">();
    }
    return lengths + (called + calling + 1) / 2;
}

int dump_x25_user_data(octets field) {
    print<"\t\t\t\tUser Data = ">();
    print_octets(field, 0, field.length);
    return 0;
}

int dump_x25_diag_explanation(octets field) {
    print<"\t\t\tDiagnostic explanation = ">();
    print_octets(field, 0, field.length);
    return field.length;
}

int dump_x25_registration(octets field) {
    const int length = field[0];
    print<"\t\t\tRegistration = ">();
    print_octets(field, 1, length);
    return length + 1;
}

}  // namespace ifwatch
