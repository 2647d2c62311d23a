#include "isdn/tei.h"

#include "base/names.h"
#include "base/print.h"

namespace ifwatch {

namespace {

// From message type 1 on; every other type shows the first name.
constexpr table_text MESSAGE_NAMES[] = {
    "Identity Request       ", "Identity Assigned      ", "Identity Denied        ", "Identity Check         ",
    "Identity Check Response", "Identity Remove        ", "Identity Verify        ",
};

}  // namespace

void dump_tei_management(octets message) {
    const table_text name = name_at(MESSAGE_NAMES, message[2] - 1, MESSAGE_NAMES[0]);
    const int action_indicator = message[3] >> 1;
    print<"%s ri=%u ai=%u (TEI=%x) e=%u\n">(name, message.be16(0), action_indicator, action_indicator, message[3] & 1);
}

}  // namespace ifwatch
