#include "eft/eft_tdu.h"

#include <algorithm>

#include "base/names.h"
#include "base/print.h"
#include "display/display_context.h"
#include "eft/eft_parameters.h"
#include "eft/ets300079.h"

namespace ifwatch {

namespace {

constexpr int TELEMATIC_CONTROL = 0x40;
constexpr int LONG_FORM = 0xFF;  // in the place of the length: it stands in the next two octets

constexpr named_value COMMANDS[] = {
    {0x20, "T-ASSOCIATE"},
    {0x21, "T-RELEASE"},
    {EFT_ACCESS, "T-ACCESS"},
    {0x23, "T-END-ACCESS"},
    {EFT_DIRECTORY, "T-DIRECTORY"},
    {0x25, "T-LOAD"},
    {0x26, "T-SAVE"},
    {0x27, "T-RENAME"},
    {0x28, "T-DELETE"},
    {0x29, "T-TYPED-DATA"},
    {0x2E, "T-P-EXCEPTION"},
    {EFT_WRITE, "T-WRITE"},
    {EFT_RESPONSE_POSITIVE, "T-RESPONSE POSITIVE"},
    {0x33, "T-RESPONSE NEGATIVE"},
    {0x36, "T-TRANSFER-REJECT"},
    {0x37, "T-READ-RESTART"},
    {0x38, "T-ABORT"},
};

eft_parameter take_parameter(octets& rest) {
    const int identifier = rest[0];
    const octets value = take_eft_contents(rest);
    return {identifier, value, rest};
}

}  // namespace

table_text eft_command_name(int command) { return value_name(COMMANDS, command, ""); }

octets take_eft_contents(octets& rest) {
    const bool long_form = rest[1] == LONG_FORM;
    const int header = long_form ? 4 : 2;
    const int length = long_form ? rest.be16(2) : rest[1];
    const octets contents = rest.at(header, std::min(length, rest.length - header));
    rest = rest.skip(header + contents.length);
    return contents;
}

void dump_eft_tdu(octets tdu, display_context& context) {
    tdu = tdu.cut(tdu.length);
    print<"\tEFT:\t">();
    const int command = tdu[0];
    if (command == TELEMATIC_CONTROL) {
        dump_ets300079(tdu);
        return;
    }
    print_named(value_name(COMMANDS, command, "unknown TDU command identifier 0x%02x"),
                static_cast<std::uint32_t>(command));
    eft_tdu_state state{command, context.eft_response_command};
    octets rest = take_eft_contents(tdu);
    while (rest.within() > 0 && !state.ended) {
        const eft_parameter parameter = take_parameter(rest);
        if (state.data_announced && parameter.identifier != EFT_FILE_DESCRIPTION) {
            break;
        }
        print_eft_parameter(parameter, state);
    }
    context.eft_response_command = state.response_command;
    print<"\n">();
}

}  // namespace ifwatch
