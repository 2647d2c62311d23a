#include "inet/icmp.h"

#include "base/names.h"
#include "base/print.h"

namespace ifwatch {

namespace {

constexpr int DESTINATION_UNREACHABLE = 3;

constexpr named_value TYPE_NAMES[] = {
    {0, "echo reply"},
    {DESTINATION_UNREACHABLE, "destination unreachable, "},
    {4, "source quench"},
    {5, "redirect"},
    {8, "echo request"},
    {11, "time exceed for datagram"},
    {12, "parameter problem on datagram"},
    {13, "timestamp request"},
    {14, "timestamp reply"},
    {15, "information request"},
    {16, "information reply"},
    {17, "address mask request"},
    {18, "address mask reply"},
};

constexpr named_value UNREACHABLE_CODES[] = {
    {0, "network unreachable"}, {1, "host unreachable"},      {2, "protocol unreachable"},
    {3, "port unreachable"},    {4, "fragmentation needed "}, {5, "source route failed "},
};

}  // namespace

table_text icmp_type_name(int type) { return value_name(TYPE_NAMES, type); }

table_text icmp_unreachable_name(int code) { return value_name(UNREACHABLE_CODES, code); }

void dump_icmp(octets message) {
    const int type = static_cast<std::int8_t>(message[0]);
    print<"\t     ICMP-Message , type ">();
    print_named(value_name(TYPE_NAMES, type, "unknown 0x%x"), static_cast<std::uint32_t>(type));
    if (type == DESTINATION_UNREACHABLE) {
        print<"%s">(value_name(UNREACHABLE_CODES, message[1], ""));
    }
    print<"\n">();
}

}  // namespace ifwatch
