#include "ppp/control_packet.h"

namespace ifwatch {

namespace {

constexpr table_text CODE_NAMES[] = {
    "Unknown",        "Configure-Request", "Configure-Ack",   "Configure-Nak", "Configure-Reject", "Terminate-Request",
    "Terminate-Ack",  "Code-Reject",       "Protocol-Reject", "Echo-Request",  "Echo-Reply",       "Discard-Request",
    "Identification", "Time-Remaining",    "Reset-Request",   "Reset-Ack",     "reserved",
};

}  // namespace

table_text control_code_name(int code, int highest) {
    return name_at(CODE_NAMES, code <= highest ? code : 0, CODE_NAMES[0]);
}

}  // namespace ifwatch
