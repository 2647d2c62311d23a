#include "isdn/subaddress.h"

#include "base/names.h"
#include "base/print.h"
#include "isdn/element_table.h"

namespace ifwatch {

namespace {

constexpr int NSAP = 0;
constexpr int ODD_NUMBER_OF_DIGITS = 0x08;

constexpr named_value SUBADDRESS_TYPES[] = {
    {NSAP, "NSAP"},
    {2, "user specified"},
};

void print_digits(octets element, int offset, bool odd) {
    for (const std::uint8_t octet : element.run(offset, element.length - offset)) {
        ++offset;
        print<"%x">(octet >> 4);
        if (!odd || offset != element.length) {
            print<"%x">(octet & 0x0F);
        }
    }
}

}  // namespace

void dump_subaddress(octets element) {
    const int type = element[2] >> 4 & 7;
    if (type == NSAP) {
        print_characters(element, 3);
    } else {
        print_digits(element, 3, (element[2] & ODD_NUMBER_OF_DIGITS) != 0);
    }
    print<"\n\t\t\t      Type of Subaddress is 0x%x , %s">(type, value_name(SUBADDRESS_TYPES, type, "reserved value"));
}

}  // namespace ifwatch
