#include "ipx/ipx_rip.h"

#include "base/names.h"
#include "base/print.h"
#include "ipx/address.h"

namespace ifwatch {

namespace {

constexpr int OPERATION_LENGTH = 2;
constexpr int REQUEST = 1;
constexpr int ENTRIES_MAX = 8;
constexpr int ENTRY_LENGTH = 8;
constexpr std::uint32_t ALL_NETWORKS = 0xFFFFFFFF;

constexpr named_value OPERATIONS[] = {{REQUEST, "RIP Request\n"}, {2, "RIP Response\n"}};

void dump_entry(octets entry) {
    print<"\t\tnetwork ">();
    print_ipx_network(entry);
    print<", \t%d hops, ">(entry.be16(4));
    print<"\t%d ticks\n">(entry.be16(6));
}

}  // namespace

void dump_ipx_rip(octets message) {
    const int operation = message[1];
    print_named(value_name(OPERATIONS, operation, "\tunknown 0x%x\n"), static_cast<std::uint32_t>(operation));

    // A request counts as general by the network behind an entry, never by that of its first one.
    bool general = false;
    octets entry = message.skip(OPERATION_LENGTH);
    for (int count = 0; count < ENTRIES_MAX && entry.length >= ENTRY_LENGTH && entry.held() > 0; ++count) {
        dump_entry(entry);
        entry = entry.skip(ENTRY_LENGTH);
        general = general || entry.be32(0) == ALL_NETWORKS;
    }
    if (operation == REQUEST) {
        print<"\t\tRequest was %s\n">(general ? "general" : "specific");
    }
}

}  // namespace ifwatch
