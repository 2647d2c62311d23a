#include "isdn/network_codesets.h"

#include "base/names.h"
#include "base/print.h"
#include "isdn/element_table.h"
#include "isdn/management_protocol.h"
#include "isdn/network_facility.h"

namespace ifwatch {

namespace {

void dump_service_indicator(octets element) {
    print<"%03X\n\t\t              Additional Info        : %03X">(element[2], element[3]);
}

constexpr named_value FACILITY_STATES[] = {
    {0x01, "Outgoing calls are barred"},         {0x02, "Call forwarding 1 is activated"},
    {0x03, "Call forwarding 2 is activated"},    {0x15, "Line belongs to closed user group"},
    {0x16, "Charging Information is available"}, {0x17, "Bad caller identification active"},
};

void dump_facility_states(octets element) {
    if (element[1] == 0) {
        print<"no facilities activated">();
    }
    for (const std::uint8_t octet : element.run(3, element.length - 3)) {
        print<"\n\t\t\t      ">();
        print_value(FACILITY_STATES, octet, "Unknown facility 0x%x");
    }
}

/// The bits differ from those of the codeset 0 element of this name.
void dump_endpoint_identifier(octets element) {
    print<"\n\t\t\t      User service identifier : %d">(element[2]);
    print<"\n\t\t\t      Interpreter             : %d">(element[3] >> 7);
    print<"\n\t\t\t      Terminal identifier     : %d">(element[3] & 0x7F);
}

constexpr element_kind ELEMENTS[] = {
    {0x01, "Service Indicator      : ", dump_service_indicator},
    {0x02, "Charging Information   : ", characters_from<3>},
    {0x03, "Date                   : ", characters_from<2>},
    {0x05, "Facility Select        : \n\t\t\t      ", dump_facility_select},
    {0x06, "Status of Facility     : ", dump_facility_states},
    {0x07, "Called Party Status    : "},
    {0x08, "Additional transmission attributes "},
    {0x26, "Endpoint identifier ", dump_endpoint_identifier},
    {0x7A, "Protocol              : ", dump_management_protocol},
};

}  // namespace

void dump_ie_codeset5(int /*variant*/, octets /*element*/) { print<"\n">(); }

void dump_ie_codeset6(int variant, octets element) {
    print<"\t\tIE-Element  : ">();
    dump_by_table(ELEMENTS, "Unknown IE-Element 0x%x in Codeset 6", variant, element);
    print<"\n">();
}

}  // namespace ifwatch
