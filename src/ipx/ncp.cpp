#include "ipx/ncp.h"

#include "base/names.h"
#include "base/print.h"

namespace ifwatch {

namespace {

constexpr named_value REQUEST_TYPES[] = {
    {0x1111, "Create Connection\n"},  {0x2222, "request from workstation\n"}, {0x3333, "reply from file server\n"},
    {0x5555, "Destroy Connection\n"}, {0x7777, "Burst Mode Packet\n"},        {0x9999, "Server Busy\n"},
};

}  // namespace

void dump_ncp(octets message) {
    print<"NCP %s">(value_name(REQUEST_TYPES, message.be16(0), ""));
    print<"\t\tsequence number: 0x%x\n">(message[2]);
    print<"\t\ttask number    : 0x%x\n">(message[4]);
    print<"\t\tconnection nr. : 0x%x\n">(message[5] * 256 + message[3]);
}

}  // namespace ifwatch
