#include "isdn/management_protocol.h"

#include <span>

#include "base/names.h"
#include "base/print.h"
#include "isdn/element_table.h"

namespace ifwatch {

namespace {

constexpr int PROTOCOL_ATT_ISDN = 3;
constexpr int OPERATION_REJECT = 5;
constexpr int ANOTHER_FOLLOWS = 0x80;

constexpr table_text OPERATION_CODES[] = {
    "Unconfirmed Operation",   "Confirmed Operation", "Return Result",
    "Return Result Continued", "Return Error",        "Reject",
    "Unknown: 0x%x",           "Unknown: 0x%x",
};

constexpr named_value ERRORS[] = {
    {0, "Unspecified Error"},
    {1, "Protocol Violation"},
    {2, "Unrecognized Operation"},
    {3, "Non-synchronous Operation not supported"},
};

constexpr named_value ACTIONS[] = {
    {3, "Activate Loopback"},
    {4, "Deactivate Loopback"},
    {8, "Reset"},
};

constexpr named_value EVENT_REPORTS[] = {
    {1, "Initialization Request"},
    {2, "Endpoint Service State Change"},
};

constexpr named_value GETS[] = {
    {0, "Service Profile Information"},
    {4, "Call Status Information"},
    {8, "Equipment Information"},
};

constexpr named_value SETS[] = {{1, "Address Information"}};

struct operation_type {
    table_text name;
    std::span<const named_value> codings;
};

constexpr operation_type OPERATION_TYPES[] = {
    {"Action", ACTIONS},
    {"Event Report", EVENT_REPORTS},
    {"Get", GETS},
    {"Set", SETS},
};

constexpr named_value PARAMETERS[] = {
    {0x01, "Service Profile Identifier"}, {0x02, "Endpoint Identifier"}, {0x04, "Call Reference Identifier"},
    {0x05, "Call State Identifier"},      {0x06, "Channel Identifier"},  {0x11, "Service State"},
    {0x12, "Service Message Error Code"}, {0x13, "Loopback Location"},   {0x26, "Supplementary Capabilities"},
    {0x70, "Cause Identifier"},
};

void dump_coding(int octet, int operation, const operation_type& type) {
    const int coding = octet & 0x7F;
    print<"\n\t\t\t      Coding is ">();
    if (operation == OPERATION_REJECT) {
        print_value(ERRORS, coding, "Unknown Management Error Code: 0x%x");
    } else {
        print_value(type.codings, coding, "Unknown Coding 0x%x");
    }
}

void dump_parameter_identifier(int octet) {
    print<"\n\t\t\t      Parameter Identifier is ">();
    print_value(PARAMETERS, octet & 0x7F, "Unknown Identifier: 0x%x");
}

/// Prints the operation, its coding and the parameter identifier, as far as they are there, from octet 4 on, and
/// returns the offset behind them.
int dump_operation(octets element) {
    const int operation_octet = element[4];
    const int operation = operation_octet >> 4 & 7;
    const operation_type& type = OPERATION_TYPES[operation_octet & 3];
    print<"\n\t\t\t      Operation Code is ">();
    print_named(name_at(OPERATION_CODES, operation), static_cast<std::uint32_t>(operation));
    print<"\n\t\t\t      Operation Type        : %s">(type.name);
    if ((operation_octet & ANOTHER_FOLLOWS) == 0) {
        return 5;
    }
    dump_coding(element[5], operation, type);
    if ((element[5] & ANOTHER_FOLLOWS) == 0) {
        return 6;
    }
    dump_parameter_identifier(element[6]);
    return 7;
}

void dump_parameter_value(octets element, int offset) {
    const int length = element[offset];
    print<"\n\t\t\t      Parameter Value       : ">();
    if (offset + length >= element.length) {
        return;
    }
    for (const std::uint8_t octet : element.run(offset + 1, length)) {
        print<"%02x ">(octet);
    }
}

}  // namespace

void dump_management_protocol(octets element) {
    if (element[2] == PROTOCOL_ATT_ISDN) {
        print<"AT&T ISDN">();
    }
    print<"\n\t\t\t      Transaction Reference : %d">(element[3] & 0x7F);
    const bool has_operation = (element[3] & ANOTHER_FOLLOWS) != 0;
    dump_parameter_value(element, has_operation ? dump_operation(element) : 4);
}

}  // namespace ifwatch
