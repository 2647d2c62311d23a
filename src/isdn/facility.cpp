#include "isdn/facility.h"

#include "base/names.h"
#include "base/print.h"
#include "inet/ber.h"
#include "isdn/element_table.h"

namespace ifwatch {

namespace {

constexpr int SUPPLEMENTARY_APPLICATION = 0x11;
constexpr int ST_OPERATION = 0x15;

constexpr named_value ST_OPERATIONS[] = {
    {0x00, "NOF"}, {0x01, "STI"}, {0x02, "RER"}, {0x03, "PRO"}, {0x04, "DSY"}, {0x05, "DCo"}, {0x06, "DCO"},
    {0x07, "MER"}, {0x08, "VSR"}, {0x09, "VSI"}, {0x0A, "MEI"}, {0x0B, "MRT"}, {0x0C, "EDA"}, {0x0D, "EDR"},
    {0x0E, "MID"}, {0x0F, "INM"}, {0x10, "EXR"}, {0x11, "TRM"}, {0x12, "EXR"},
};

constexpr named_value COMPONENT_TAGS[] = {
    {1, "invoke"},
    {2, "return result"},
    {3, "return error"},
    {4, "reject"},
};

void dump_component(octets element) {
    print<"\t\t\t      Component tag is ">();
    print_value(COMPONENT_TAGS, element[3] & 0x1F, "0x%x (reserved value)");
    print<"\n\t\t\t\t">();
    dump_ber("\t\t\t\t", element.cut(element.length).at(5, element[4] & 0x1F));
}

}  // namespace

void dump_facility(octets element) {
    const int discriminator = element[2] & 0x1F;
    print<"\n\t\t\t      Service discriminator is ">();
    if (discriminator == SUPPLEMENTARY_APPLICATION) {
        print<"supplement. application">();
    } else if (discriminator == ST_OPERATION) {
        print<"ST (">();
        print_value(ST_OPERATIONS, element[3] & 0x7F, "unknown (0x%x)");
    } else {
        print<"0x%x (reserved value)">(discriminator);
    }
    print<")\n">();
    if (discriminator == SUPPLEMENTARY_APPLICATION) {
        dump_component(element);
    }
}

}  // namespace ifwatch
