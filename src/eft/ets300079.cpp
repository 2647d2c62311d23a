#include "eft/ets300079.h"

#include <algorithm>
#include <iterator>

#include "base/names.h"
#include "base/print.h"
#include "eft/eft_field.h"

namespace ifwatch {

namespace {

constexpr int HEADER_LENGTH = 4;

// By message code, from 1 on.
constexpr table_text MESSAGES[] = {
    "SBV_TC_Error_TC",          "SBV_Channel_Open_TC",    "SBV_Channel_Close_TC", "SBV_Channel_Error_TC", "SBV_TFI_TC",
    "SBV_Begin_Application_TC", "SBV_End_Application_TC", "SBV_TPD_Begin_TC",     "SBV_TPD_End_TC",       "SBV_DFK_TC",
};

constexpr table_text RESULTS[] = {
    "Successful",          "Not successful",    "Application not available", "Application already engaged",
    "Release not allowed", "TPD not supported",
};

constexpr named_value PACKET_SIZES[] = {
    {7, " 128 octets"}, {8, " 256 octets"}, {9, " 512 octets"}, {10, "1024 octets"}, {11, "2048 octets"},
};

// First octet of an error code.
constexpr int TC_NOT_SUPPORTED = 0;
constexpr int TC_ERRONEOUS = 1;

/// Prints the name of a message; an unknown one shows `shown_code`.
void print_message_name(int code, int shown_code) {
    print_named(name_at(MESSAGES, code - 1, "??? 0x%x"), static_cast<std::uint32_t>(shown_code));
}

void show_nothing(octets /*value*/, int /*message_code*/) {}

void show_result(octets value, int /*message_code*/) {
    print_named(name_at(RESULTS, value[0], "unknown 0x%x"), value[0]);
}

void show_error_code(octets value, int message_code) {
    if (value[0] == TC_NOT_SUPPORTED) {
        print<"TC not supported ">();
        if (value.length > 1) {
            print_message_name(value[1], message_code);
        }
    } else if (value[0] == TC_ERRONEOUS) {
        print<"TC erroneous: ">();
        print_eft_octets(value.skip(1));
    } else {
        print<"unknown 0x%x">(value[0]);
    }
}

void show_packet_size(octets value, int /*message_code*/) {
    print_named(value_name(PACKET_SIZES, value[0], "unknown 0x%x"), value[0]);
}

void show_window_size(octets value, int /*message_code*/) { print<"%d">(value[0]); }

struct parameter_printer {
    int identifier = 0;
    table_text label;
    void (*show)(octets value, int message_code) = nullptr;
};

constexpr parameter_printer PARAMETERS[] = {
    {9, "IB_Application_Address", show_nothing},
    {10, "IB_Application_Selection", show_nothing},
    {11, "IB_Application_Data", show_nothing},
    {12, "Reference", show_nothing},
    {13, "Result:", show_result},
    {14, "Reverse_Role_Assignment", show_nothing},
    {129, "Error_Code", show_error_code},
    {131, "Ind_IB_Cause", show_nothing},
    {132, "Req_IB_Called_Address", show_nothing},
    {133, "Ind_IB_Diagnostic", show_nothing},
    {134, "Req_OB_User_Data", show_nothing},
    {135, "Req_IB_User_Data", show_nothing},
    {139, "Ind_OB_Cause", show_nothing},
    {140, "Req_OB_Called_Address", show_nothing},
    {141, "Req_OB_Called_Subaddress", show_nothing},
    {152, "OB_Application_Address", show_nothing},
    {168, "OB_Application_Selection", show_nothing},
    {184, "OB_Application_Data", show_nothing},
    {194, "DDU_Fall-Back_Mode", show_nothing},
    {209, "Packet_Size", show_packet_size},
    {210, "Window_Size", show_window_size},
    {225, "Function_Keys", show_nothing},
    {226, "Reset_Keys", show_nothing},
};

void print_parameter(int identifier, octets value, int message_code) {
    const parameter_printer* const found = std::ranges::find(PARAMETERS, identifier, &parameter_printer::identifier);
    if (found == std::end(PARAMETERS)) {
        print<"\n\t\tunknown PDU 0x%x">(identifier);
        return;
    }
    print_eft_label(found->label);
    found->show(value, message_code);
}

/// Takes the first parameter off `rest`; false when its value passes the end.
bool take_parameter(octets& rest, int& identifier, octets& value) {
    const bool long_form = rest[0] == 0xFF;
    const int header = long_form ? 3 : 1;
    const int length = long_form ? rest[2] : rest[0] & 0x0F;
    identifier = long_form ? rest[1] : rest[0] >> 4;
    value = rest.at(header, length);
    if (header + length > rest.length) {
        return false;
    }
    rest = rest.skip(header + length);
    return true;
}

bool is_control_message(octets data) { return data.length > 3 && data[0] == 0x40 && data[1] == 0x9E; }

}  // namespace

int dump_ets300079(octets data) {
    if (!is_control_message(data)) {
        print<"\n">();
        return data.length;
    }
    print<"ETS 300079: ">();
    const int code = data[2];
    const int parameters_length = data[3];
    if (HEADER_LENGTH + parameters_length > data.length) {
        return data.length;
    }
    print_message_name(code, code);
    octets rest = data.at(HEADER_LENGTH, parameters_length);
    int identifier = 0;
    octets value;
    while (rest.within() > 0 && take_parameter(rest, identifier, value)) {
        print_parameter(identifier, value, code);
    }
    print<"\n">();
    return data.length;
}

}  // namespace ifwatch
