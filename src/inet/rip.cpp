#include "inet/rip.h"

#include "base/names.h"
#include "base/print.h"
#include "inet/ip_address.h"

namespace ifwatch {

namespace {

constexpr int ENTRY_LENGTH = 20;
constexpr int HEADER_LENGTH = 4;
constexpr int TRIGGERED_HEADER_LENGTH = 8;
constexpr int TRIGGERED_REQUEST = 9;

constexpr named_value COMMAND_NAMES[] = {
    {1, "Request"}, {2, "Response"}, {TRIGGERED_REQUEST, "Request"}, {10, "Response"}, {11, "Ack"},
};

constexpr bool is_triggered(int command) { return command >= TRIGGERED_REQUEST && command <= 11; }

void print_command(octets message) {
    const int command = message[0];
    const int version = message[1];
    const table_text name = value_name(COMMAND_NAMES, command, "");
    if (!is_triggered(command)) {
        print<"\t     RIP  Command %d (%s), Version %d\n">(command, name, version);
    } else if (command == TRIGGERED_REQUEST) {
        print<"\t     T-RIP  Cmd %d (%s), Version %d\n">(command, name, version);
    } else {
        print<"\t     T-RIP  Cmd %d (%s), Flush %d, Seq# %d, Version %d\n">(command, name, message[5], message.be16(6),
                                                                            version);
    }
}

void print_entry_v1(octets entry) {
    text_buffer<IP_ADDRESS_WIDTH> address;
    // The metric has always been shown as it lies in the memory of a little-endian machine.
    print<"\t     Address Family %d  IP Address %-15s  Metric %d\n">(
        entry.be16(0), ip_to_string(address, entry.skip(4)), entry.le32(16));
}

void print_entry_v2(octets entry) {
    text_buffer<IP_ADDRESS_WIDTH> address;
    text_buffer<IP_ADDRESS_WIDTH> mask;
    text_buffer<IP_ADDRESS_WIDTH> next_hop;
    print<"\t     Address Family %d  IP Address %-15s Mask %-15s\n">(
        entry.be16(0), ip_to_string(address, entry.skip(4)), ip_to_string(mask, entry.skip(8)));
    print<"\t                       Nexthop %-15s    Metric %ld\n">(ip_to_string(next_hop, entry.skip(12)),
                                                                    entry.be32(16));
}

}  // namespace

void dump_rip(octets message) {
    const int header_length = is_triggered(message[0]) ? TRIGGERED_HEADER_LENGTH : HEADER_LENGTH;
    if (message.length < header_length) {
        return;
    }
    print_command(message);
    const int version = message[1];
    octets entries = message.skip(header_length);
    if (entries.length % ENTRY_LENGTH != 0) {
        return;
    }
    for (; entries.within() > 0; entries = entries.skip(ENTRY_LENGTH)) {
        if (version == 1) {
            print_entry_v1(entries);
        } else if (version == 2) {
            print_entry_v2(entries);
        }
    }
}

}  // namespace ifwatch
