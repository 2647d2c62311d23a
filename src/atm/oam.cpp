#include "atm/oam.h"

#include <algorithm>
#include <iterator>

#include "base/names.h"
#include "base/print.h"

namespace ifwatch {

namespace {

constexpr int BLOCK_UNIT = 128;  // cells

constexpr named_value ACTIVATION_MESSAGES[] = {
    {1, "Activate Request"},   {2, "Activate Confirm"},   {3, "Activate Reject"},
    {4, "Deactivate Request"}, {5, "Deactivate Confirm"}, {6, "Deactivate Reject"},
};

constexpr table_text DIRECTIONS[] = {"unknown", "B-A", "A-B", "bidirectional"};

void dump_no_fields(octets /*payload*/) { print<"\n">(); }

void dump_defect(octets payload) { print<"Defect Type 0x%02x\n">(payload[1]); }

void dump_loopback(octets payload) {
    print<"%s\n">(payload[1] != 0 ? "request" : "response");
    print<"\tTag 0x%08x\n">(payload.le32(2));
}

void dump_performance(octets payload) {
    print<"  #%d\n">(payload[1]);
    print<"\tCells %d\n">(payload.le16(2));
    print<"\tBlock Error Detection Code %d\n">(payload.le16(4));
    print<"\tHiPri Cells %d\n">(payload.le16(6));
    print<"\tTimestamp 0x%02lx\n">(payload.le32(8));
    print<"\tTotal HiPri Cells %d\n">(payload.le16(12));
    print<"\tBlock Error Result 0x%02x\n">(payload[14]);
    print<"\tTotal Cells %d\n">(payload.le16(15));
}

constexpr unsigned reversed_nibble(unsigned bits) {
    return (bits & 1) << 3 | (bits & 2) << 1 | (bits >> 1 & 2) | (bits >> 3 & 1);
}

void dump_activation(octets payload) {
    const table_text message = value_name(ACTIVATION_MESSAGES, payload[1] >> 2, "undefined action");
    print<"%s %s\n">(message, name_at(DIRECTIONS, payload[1] & 3));
    print<"\tTag 0x%02x\n">(payload[2]);
    // The letter behind the block sizes belongs to the format.
    print<"\tBlock Size A-B %lud\n">(reversed_nibble(payload[3] >> 4U) * BLOCK_UNIT);
    print<"\tBlock Size B-A %lud\n">(reversed_nibble(payload[3] & 0xFU) * BLOCK_UNIT);
}

struct oam_function {
    int type_and_function = -1;
    table_text name;
    void (*dump_fields)(octets payload) = nullptr;
};

constexpr oam_function FUNCTIONS[] = {
    {0x10, "AIS", dump_defect},
    {0x11, "RDI", dump_defect},
    {0x14, "Continuity Check (CC)", dump_no_fields},
    {0x18, "Loopback", dump_loopback},
    {0x20, "Forward Monitoring (PMF)", dump_performance},
    {0x21, "Backward Reporting (PMB)", dump_performance},
    {0x50, "Group Protection", dump_no_fields},
    {0x51, "Individual Protection", dump_no_fields},
    {0x80, "Act/Deact PMF+PMB", dump_activation},
    {0x81, "Act/Deact CC", dump_activation},
    {0x82, "Act/Deact PMF", dump_activation},
};
constexpr oam_function SYSTEM_MANAGEMENT = {0xF0, "System Fault Management", dump_no_fields};
constexpr oam_function UNDEFINED = {-1, "undefined", dump_no_fields};

const oam_function& find_function(int type_and_function) {
    if ((type_and_function & 0xF0) == SYSTEM_MANAGEMENT.type_and_function) {
        return SYSTEM_MANAGEMENT;
    }
    const auto* const row = std::ranges::find(FUNCTIONS, type_and_function, &oam_function::type_and_function);
    return row != std::end(FUNCTIONS) ? *row : UNDEFINED;
}

}  // namespace

void dump_oam(octets payload, display_context& /*context*/) {
    const oam_function& function = find_function(payload[0]);
    print<"      %s ">(function.name);
    function.dump_fields(payload);
}

}  // namespace ifwatch
