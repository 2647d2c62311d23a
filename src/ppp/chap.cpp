#include "ppp/chap.h"

#include "base/print.h"

namespace ifwatch {

namespace {

// Codes that carry a value and a name.
constexpr named_value EXCHANGES[] = {
    {1, "Challenge"},
    {2, "Response"},
};

constexpr named_value RESULTS[] = {
    {3, "Success"},
    {4, "Failure"},
};

}  // namespace

void dump_chap(const control_packet& packet) {
    const octets data = packet.data;
    print<"\t     ID %d CHAP ">(packet.identifier);
    if (const table_text exchange = value_name(EXCHANGES, packet.code)) {
        const int value_length = data[0];
        print<"%s Value Length %d Name %s\n">(exchange, value_length, data.text(1 + value_length, data.held()));
    } else if (const table_text result = value_name(RESULTS, packet.code)) {
        print<"%s Message %s\n">(result, data.text(0, data.held()));
    } else {
        print<"unknown code %d\n">(packet.code);
    }
}

}  // namespace ifwatch
