#include "isdn/message_type.h"

#include <span>

#include "base/names.h"
#include "base/print.h"

namespace ifwatch {

namespace {

constexpr table_text ILLEGAL_TYPE = "\n!!!\tIllegal D-Channel Message (Layer 3 - Messagetype : 0x%x)";

constexpr int ESCAPE = 0x00;
constexpr int MANAGEMENT_INFORMATION = 0xF7;

constexpr named_value Q931_TYPES[] = {
    {0x01, "ALERT"},
    {0x02, "CALL PROCEEDING"},
    {0x03, "PROGRESS"},
    {0x05, "SETUP"},
    {0x07, "CONNECT"},
    {0x0D, "SETUP ACKNOWLEDGE"},
    {0x0F, "CONNECT ACKNOWLEDGE"},
    {0x20, "USER INFO"},
    {0x21, "SUSPEND REJECT"},
    {0x22, "RESUME REJECT"},
    {0x24, "HOLD"},
    {0x25, "SUSPEND"},
    {0x26, "RESUME"},
    {0x28, "HOLD ACK"},
    {0x2D, "SUSPEND ACKNOWLEDGE"},
    {0x2E, "RESUME ACKNOWLEDGE"},
    {0x30, "HOLD REJ"},
    {0x31, "RETRIEVE"},
    {0x33, "RETRIEVE ACK"},
    {0x37, "RETRIEVE REJ"},
    {0x40, "DETACH (obsolete)"},
    {0x45, "DISCONNECT"},
    {0x46, "RESTART"},
    {0x48, "DETACH ACKNOWLEDGE (obsolete)"},
    {0x4D, "RELEASE"},
    {0x4E, "RESTART ACKNOWLEDGE"},
    {0x5A, "RELEASE COMPLETE"},
    {0x60, "SEGMENT"},
    {0x62, "FACILITY"},
    {0x64, "REGISTER"},
    {0x6E, "NOTIFY"},
    {0x75, "STATUS ENQUIRY"},
    {0x79, "CONGESTION CONTROL"},
    {0x7B, "INFO"},
    {0x7D, "STATUS"},
};

constexpr named_value CALL_TYPES_1TR6[] = {
    {0x01, "ALERT"},
    {0x02, "CALL SENT"},
    {0x07, "CONNECT"},
    {0x0F, "CONNECT ACKNOWLEDGE"},
    {0x05, "SETUP"},
    {0x0D, "SETUP ACKNOWLEDGE"},
    {0x26, "RESUME"},
    {0x2E, "RESUME ACKNOWLEDGE"},
    {0x22, "RESUME REJECT"},
    {0x25, "SUSPEND"},
    {0x2D, "SUSPEND ACKNOWLEDGE"},
    {0x21, "SUSPEND REJECT"},
    {0x20, "USER INFO"},
    {0x40, "DETACH"},
    {0x45, "DISCONNECT"},
    {0x4D, "RELEASE"},
    {0x5A, "RELEASE ACKNOWLEDGE"},
    {0x6E, "CANCEL ACKNOWLEDGE"},
    {0x67, "CANCEL REJECT"},
    {0x69, "CONGESTION CONTROL"},
    {0x60, "FACILITY"},
    {0x68, "FACILITY ACKNOWLEDGE"},
    {0x66, "FACILITY CANCEL"},
    {0x64, "FACILITY REGISTER"},
    {0x65, "FACILITY REJECT"},
    {0x6D, "INFORMATION"},
    {0x6C, "REGISTER ACKNOWLEDGE"},
    {0x6F, "REGISTER REJECT"},
    {0x63, "STATUS"},
};

constexpr named_value CONTROL_TYPES_1TR6[] = {
    {0x61, "REGISTER INDICATION"},     {0x62, "CANCEL INDICATION"},  {0x63, "FACILITY STATUS"},
    {0x64, "STATUS ACKNOWLEDGE"},      {0x65, "STATUS REJECT"},      {0x66, "FACILITY INFORMATION"},
    {0x67, "INFORMATION ACKNOWLEDGE"}, {0x68, "INFORMATION REJECT"}, {0x75, "CLOSE"},
    {0x77, "CLOSE ACKNOWLEDGE"},
};

int dump_type(std::span<const named_value> types, octets message) {
    const std::uint8_t type = message[0];
    print_named(value_name(types, type, ILLEGAL_TYPE), type);
    return 1;
}

int dump_escaped_type(octets message) {
    const int type = message[1];
    if (type == MANAGEMENT_INFORMATION) {
        print<"MANAGEMENT INFORMATION (AT&T CUSTOM ISDN)">();
    } else {
        print<"UNKNOWN MESSAGE TYPE 0x%x ??">(type);
    }
    return 2;
}

}  // namespace

int dump_q931_type(octets message) {
    const int taken = message[0] == ESCAPE ? dump_escaped_type(message) : dump_type(Q931_TYPES, message);
    print<"\n">();
    return taken;
}

int dump_1tr6_call_type(octets message) { return dump_type(CALL_TYPES_1TR6, message); }

int dump_1tr6_control_type(octets message) { return dump_type(CONTROL_TYPES_1TR6, message); }

}  // namespace ifwatch
