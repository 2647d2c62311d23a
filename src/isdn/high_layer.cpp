#include "isdn/high_layer.h"

#include "base/names.h"
#include "base/print.h"
#include "isdn/coding_standard.h"
#include "isdn/element_table.h"

namespace ifwatch {

namespace {

constexpr named_value INTERPRETATIONS[] = {{4, "primary only "}};
constexpr named_value PRESENTATION_METHODS[] = {{1, "high layer protocol profile"}};

constexpr named_value CHARACTERISTICS[] = {
    {0x01, "Telephony"},
    {0x04, "Facsimile Group 2/3 (F.182)"},
    {0x21, "Facsimile Group 4 Class 1 (F.184)"},
    {0x24, "Teletex service, basic and mixed mode, Fax G4 Class 2+3 (F.184)"},
    {0x28, "Teletex service, basic and processable mode (F.220)"},
    {0x31, "Teletex (F.200)"},
    {0x32, "International interworking for Videotex (F.60)"},
    {0x35, "Telex"},
    {0x38, "Message Handling System X.400"},
    {0x41, "OSI application X.200"},
    {0x5E, "reserved for maintenance"},
    {0x5F, "reserved for management"},
};

void print_characteristic(int octet) { print_value(CHARACTERISTICS, octet & 0x7F, "(reserved value 0x%x)"); }

/// Octet 3.
void dump_coding(int octet) {
    print<"\n\t\t\t      High Layer Octet 3 : 0x%x (dec. %d) ">(octet, octet);
    print<"\n\t\t\t      Coding standard is %s">(name_at(CODING_STANDARDS, coding_standard(octet)));
    print<"\n\t\t\t      Interpretation is ">();
    print_value(INTERPRETATIONS, octet >> 2 & 7, "0x%x (reserved value)");
    print<"\n\t\t\t      Presentation method : ">();
    print_value(PRESENTATION_METHODS, octet & 3, "0x%x (reserved value)");
}

}  // namespace

table_text high_layer_name(octets element) {
    return element.length > 3 ? value_name(CHARACTERISTICS, element[3] & 0x7F) : nullptr;
}

void dump_high_layer_compatibility(octets element) {
    if (element.length <= 2) {
        return;
    }
    dump_coding(element[2]);
    if (element.length <= 3) {
        return;
    }
    const int octet_4 = element[3];
    print<"\n\t\t\t      High Layer Charact. 0x%x (dec. %d) : \n\t\t\t                ">(octet_4, octet_4);
    print_characteristic(octet_4);
    if ((octet_4 & 0x80) == 0 && element.length > 4) {
        const int octet_4a = element[4];
        print<"\n\t\t\t      Extended HLC 0x%x (dec. %d) : \n\t\t\t                   ">(octet_4a, octet_4a);
        print_characteristic(octet_4a);
    }
}

}  // namespace ifwatch
