#include "inet/pptp_fields.h"

#include <algorithm>
#include <array>
#include <span>

#include "base/names.h"
#include "base/print.h"

namespace ifwatch {

namespace {

enum class field_kind : std::uint8_t { NUMBER, TEXT, FRAMING, BEARER };
using enum field_kind;

struct message_field {
    int offset;
    int size;
    field_kind kind;
    const char* name;
};

struct message_kind {
    const char* name;
    std::span<const message_field> fields;
};

constexpr message_field START_REQUEST[] = {
    {12, 2, NUMBER, "Version"},       {16, 4, FRAMING, "Framing Capabilities"}, {20, 4, BEARER, "Bearer Capabilities"},
    {24, 2, NUMBER, "max. channels"}, {26, 2, NUMBER, "Firmware Rev."},         {28, 64, TEXT, "Host"},
    {92, 64, TEXT, "Vendor"},
};

constexpr message_field START_REPLY[] = {
    {12, 2, NUMBER, "Version"},
    {14, 1, NUMBER, "Result"},
    {15, 1, NUMBER, "Error"},
    {16, 4, FRAMING, "Framing Capabilities"},
    {20, 4, BEARER, "Bearer Capabilities"},
    {24, 2, NUMBER, "max. channels"},
    {26, 2, NUMBER, "Firmware Rev."},
    {28, 64, TEXT, "Host"},
    {92, 64, TEXT, "Vendor"},
};

constexpr message_field STOP_REQUEST[] = {
    {12, 1, NUMBER, "Reason"},
};

constexpr message_field STOP_REPLY[] = {
    {12, 1, NUMBER, "Result"},
    {13, 1, NUMBER, "Error"},
};

constexpr message_field ECHO_REQUEST[] = {
    {12, 4, NUMBER, "Ident"},
};

constexpr message_field ECHO_REPLY[] = {
    {12, 4, NUMBER, "Ident"},
    {16, 1, NUMBER, "Result"},
    {17, 1, NUMBER, "Error"},
};

constexpr message_field OUTGOING_CALL_REQUEST[] = {
    {12, 2, NUMBER, "Call ID"},     {14, 2, NUMBER, "Call Serial"},    {16, 4, NUMBER, "Min Bps"},
    {20, 4, NUMBER, "Max Bps"},     {24, 4, BEARER, "Bearer Type"},    {28, 4, FRAMING, "Framing Type"},
    {32, 2, NUMBER, "Rcv Window"},  {34, 2, NUMBER, "Pkt Proc Delay"}, {36, 2, NUMBER, "Number Length"},
    {40, 64, TEXT, "Phone Number"}, {104, 64, TEXT, "Subaddress"},
};

constexpr message_field OUTGOING_CALL_REPLY[] = {
    {12, 2, NUMBER, "Call ID"},    {14, 2, NUMBER, "Peer's Call ID"}, {16, 1, NUMBER, "Result"},
    {17, 1, NUMBER, "Error"},      {18, 2, NUMBER, "Cause"},          {20, 4, NUMBER, "Connect Speed"},
    {24, 2, NUMBER, "Rcv Window"}, {26, 2, NUMBER, "Pkt Proc Delay"}, {28, 4, NUMBER, "Channel"},
};

constexpr message_field INCOMING_CALL_REQUEST[] = {
    {12, 2, NUMBER, "Call ID"},      {14, 2, NUMBER, "Call Serial"},          {16, 4, BEARER, "Bearer Type"},
    {20, 4, NUMBER, "Channel"},      {24, 2, NUMBER, "Dialed Number Length"}, {26, 2, NUMBER, "Dialing Number Length"},
    {28, 64, TEXT, "Dialed Number"}, {92, 64, TEXT, "Dialing Number"},        {156, 64, TEXT, "Subaddress"},
};

constexpr message_field INCOMING_CALL_REPLY[] = {
    {12, 2, NUMBER, "Call ID"}, {14, 2, NUMBER, "Peer's Call ID"}, {16, 1, NUMBER, "Result"},
    {17, 1, NUMBER, "Error"},   {18, 2, NUMBER, "Rcv Window"},     {20, 2, NUMBER, "Pkt Proc Delay"},
};

constexpr message_field INCOMING_CALL_CONNECTED[] = {
    {12, 2, NUMBER, "Peer's Call ID"}, {16, 4, NUMBER, "Connect Speed"}, {20, 2, NUMBER, "Rcv Window"},
    {22, 2, NUMBER, "Pkt Proc Delay"}, {24, 4, FRAMING, "Framing Type"},
};

constexpr message_field CALL_CLEAR_REQUEST[] = {
    {12, 2, NUMBER, "Call ID"},
};

constexpr message_field CALL_DISCONNECT_NOTIFY[] = {
    {12, 2, NUMBER, "Call ID"}, {14, 1, NUMBER, "Result"},          {15, 1, NUMBER, "Error"},
    {16, 2, NUMBER, "Cause"},   {20, 128, TEXT, "Call Statistics"},
};

// By control message type; the last stands for all above it.
constexpr auto MESSAGES = std::to_array<message_kind>({
    {"", {}},
    {"Start Control Connection Request", START_REQUEST},
    {"Start Control Connection Reply", START_REPLY},
    {"Stop Control Connection Request", STOP_REQUEST},
    {"Stop Control Connection Reply", STOP_REPLY},
    {"Echo Request", ECHO_REQUEST},
    {"Echo Reply", ECHO_REPLY},
    {"Outgoing Call Request", OUTGOING_CALL_REQUEST},
    {"Outgoing Call Reply", OUTGOING_CALL_REPLY},
    {"Incoming Call Request", INCOMING_CALL_REQUEST},
    {"Incoming Call Reply", INCOMING_CALL_REPLY},
    {"Incoming Call Connected", INCOMING_CALL_CONNECTED},
    {"Call Clear Request", CALL_CLEAR_REQUEST},
    {"Call Disconnect Notify", CALL_DISCONNECT_NOTIFY},
    {"Unknown PPTP Message", {}},
});

constexpr named_value FRAMINGS[] = {
    {1, "Asynchronous\n"},
    {2, "Synchronous\n"},
};

constexpr named_value BEARERS[] = {
    {1, "Analog\n"},
    {2, "Digital\n"},
    {3, "Analog or Digital\n"},
};

std::uint32_t read_number(octets message, const message_field& field) {
    std::uint32_t number = 0;
    for (int i = 0; i < field.size; ++i) {
        number = number << 8 | message[field.offset + i];
    }
    return number;
}

void print_field(octets message, const message_field& field) {
    print<"\t\t\t%s: ">(field.name);
    if (field.kind == TEXT) {
        print<"%s\n">(message.text(field.offset, message.held()));
        return;
    }
    const std::uint32_t number = read_number(message, field);
    if (field.kind == NUMBER) {
        print<"%x\n">(number);
    } else {
        const std::span<const named_value> names =
            field.kind == FRAMING ? std::span<const named_value>(FRAMINGS) : std::span<const named_value>(BEARERS);
        print<"%s">(value_name(names, static_cast<int>(number), ""));
    }
}

}  // namespace

void dump_pptp_control_message(octets message) {
    const std::size_t type = std::min<std::size_t>(message.be16(8), MESSAGES.size() - 1);
    const message_kind& kind = MESSAGES[type];
    print<"\n\t\t\tPPTP %s\n">(kind.name);
    for (const message_field& field : kind.fields) {
        print_field(message, field);
    }
}

}  // namespace ifwatch
