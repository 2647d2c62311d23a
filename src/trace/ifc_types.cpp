#include "trace/ifc_types.h"

#include <algorithm>
#include <iterator>

#include "base/print.h"

namespace ifwatch {

namespace {

// In the order in which they are searched.
constexpr ifc_type IFC_TYPES[] = {
    {"PABX", -2, 0},    {"ISDN D-channel", 0, 0}, {"ISDN B-channel", 1, 9}, {"ATM (old)", 2, 11}, {"ATM", 3, 11},
    {"WLAN", 4, 1},     {"DDNX.25", 4, 12},       {"IPoX.25", 5, 12},       {"LAN", 6, 1},        {"LAN 802.3", 7, 1},
    {"TokenBus", 8, 6}, {"TokenRing", 9, 6},      {"FrameRelay", 32, 107},  {"PPP", 23, 9},       {"LAPB", 16, 50},
    {"HDLC", 118, 104}, {"SHDSL", 169, 0},        {"ADSL", 94, 0},          {"Tunnel", 131, 12},  {"not-found", -1, 0},
};
constexpr ifc_type UNKNOWN = {"unknown", -1, 1};

}  // namespace

const ifc_type& ifc_type_entry(int code) {
    const auto* const found = std::find_if(std::begin(IFC_TYPES), std::end(IFC_TYPES),
                                           [code](const ifc_type& row) { return row.code == code; });
    return found != std::end(IFC_TYPES) ? *found : UNKNOWN;
}

void report_line(const trace_target& target, bool list_mode, int channel_type, const char* text) {
    if (list_mode) {
        report<" %s\n">(text);
        return;
    }
    report<"Ifc:%d (Chan:%d Unit:%d Slot:%d) Type: %d (%s)\n %s\n">(interface_index(target), target.channel,
                                                                    target.unit, target.slot, channel_type,
                                                                    ifc_type_entry(channel_type).name, text);
}

}  // namespace ifwatch
