#include "isdn/cause.h"

#include "base/names.h"
#include "base/print.h"
#include "isdn/element_table.h"
#include "isdn/information_element.h"

namespace ifwatch {

namespace {

constexpr named_value Q850_CAUSES[] = {
    {0x81, "Unallocated (unassigned) number"},
    {0x82, "No route to specified transit network"},
    {0x83, "No route to destination"},
    {0x86, "Channel unacceptable"},
    {0x87, "Call awarded and being delivered"},
    {0x90, "Normal call clearing"},
    {0x91, "User busy"},
    {0x92, "User not responding"},
    {0x93, "No answer form user"},
    {0x95, "Call rejected"},
    {0x96, "Number changed"},
    {0x9A, "Non-selected user clearing"},
    {0x9B, "Destination out of order"},
    {0x9C, "Invalid number format"},
    {0x9D, "Facility rejected"},
    {0x9E, "Response to STATUS ENQUIRY"},
    {0x9F, "Normal, unspecified"},
    {0xA2, "No circuit/channel available"},
    {0xA6, "Network out of order"},
    {0xA9, "Temporarily failure"},
    {0xAA, "Switching equipment congestion"},
    {0xAB, "Access Information discarded"},
    {0xAC, "Requested circuit/channel not available"},
    {0xAF, "Resources unavailable, unspecified"},
    {0xB1, "Quality of service unavailable"},
    {0xB2, "Requested facility not subscribed"},
    {0xB9, "Bearer Capability not authorized"},
    {0xBA, "Bearer Capabiliy not presently available"},
    {0xBF, "Service or option not available,unspec."},
    {0xC1, "Bearer capability not implemented"},
    {0xC2, "Channel type not implemented"},
    {0xC5, "Requested facility not implemented"},
    {0xC6, "Only restricted digital info. bearer cap. is available"},
    {0xCF, "Service or option not implemented, unspec."},
    {0xD1, "Invalid call reference value"},
    {0xD2, "Identified channel does not exist"},
    {0xD3, "A suspended call exist, but call identity does not"},
    {0xD4, "Call identity in use"},
    {0xD5, "No call suspended"},
    {0xD6, "Call with the requested call id has been cleared"},
    {0xD8, "Incompatible destination"},
    {0xDB, "Invalid transit network selection"},
    {0xDF, "Invalid message, unspecified"},
    {0xE0, "Mandatory information element is missing"},
    {0xE1, "message type non-existant or not implemented"},
    {0xE2, "message not compatible with call state"},
    {0xE3, "Information element non-existant or not implemented"},
    {0xE4, "invalid information element contents"},
    {0xE5, "message not compatible with call state"},
    {0xE6, "recovery on timer expiry"},
    {0xEF, "Protocol error, unspecified"},
    {0xFF, "Internetworking, unspecified"},
};

constexpr named_value CAUSES_1TR6[] = {
    {0x81, "Invalid call reference value"},
    {0x83, "Bearer service not implemented"},
    {0x87, "Call identity does not exist"},
    {0x88, "Call identity in use"},
    {0x8A, "No channel available"},
    {0x90, "Requested facility not implemented"},
    {0x91, "Requested facility not subscribed"},
    {0xA0, "Outgoing calls barred"},
    {0xA1, "User access busy"},
    {0xA2, "Not partner of CUG"},
    {0xA3, "Non existant CUG"},
    {0xA5, "SPV is not allowed"},
    {0xB5, "Destination not obtainable"},
    {0xB8, "Number changed"},
    {0xB9, "Out of order"},
    {0xBA, "User not responding"},
    {0xBB, "User busy"},
    {0xBD, "Incomming calls barred"},
    {0xBE, "Call rejected"},
    {0xD9, "Network congestion"},
    {0xDA, "Remote user initiated"},
    {0xF0, "Local procedure error"},
    {0xF1, "Remote procedure error"},
    {0xF2, "Remote user suspended"},
    {0xF3, "Remote user resumed"},
    {0xF4, "User info discarded locally"},
};

}  // namespace

int cause_value(int variant, octets element) {
    if (element[1] == 0) {
        return 0;
    }
    if (variant == VARIANT_1TR6) {
        return element[2];
    }
    const bool octet_3a_follows = (element[2] & 0x80) == 0;
    return octet_3a_follows ? element[4] : element[3];
}

table_text cause_name(int variant, int cause) {
    return variant == VARIANT_1TR6 ? value_name(CAUSES_1TR6, cause) : value_name(Q850_CAUSES, cause);
}

void dump_cause(int variant, octets element) {
    const int cause = cause_value(variant, element);
    if (element[1] == 0) {
        print<"empty">();
    } else if (variant == VARIANT_Q931) {
        print<"0x%x ">(cause);
        print_value(Q850_CAUSES, cause, "(unknown value)");
    } else if (variant == VARIANT_1TR6) {
        print<"0x%x ">(cause);
        print_value(CAUSES_1TR6, cause, "(unknown value 0x%x)");
    }
}

}  // namespace ifwatch
