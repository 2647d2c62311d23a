#include "display/l1_event.h"

#include "base/hex_dump.h"
#include "base/names.h"
#include "base/print.h"
#include "display/display_context.h"

namespace ifwatch {

namespace {

constexpr std::uint32_t EVENT_LAYER1_STATE = 7;

constexpr named_value EVENTS[] = {{1, "ACTIVATE"}, {2, "DEACTIVATE"}};

constexpr named_value LINE_ERRORS[] = {{3, "RST "}, {4, "CRC "}, {5, "ODD "}, {6, "ORUN"}};

// ITU-T I.430: F states are those of the terminal side, G states those of the network side.
constexpr table_text LAYER1_STATES[] = {
    "L1 PH_ACT_REQ", "L1 T3", "L1 PS1 ON", "L1 PS1 OFF", "L1 F1", "L1 F2", "L1 F3", "L1 F4",   "L1 F5",
    "L1 F6",         "L1 F7", "L1 F8",     "L1 G1",      "L1 G2", "L1 G3", "L1 G4", "L1 SLIP",
};

table_text event_name(std::uint32_t event, std::uint32_t state) {
    return event == EVENT_LAYER1_STATE ? name_at(LAYER1_STATES, static_cast<int>(state), "L1 UNKNOWN%ld")
                                       : value_name(EVENTS, static_cast<int>(event), "");
}

}  // namespace

table_text line_error_name(int event) { return value_name(LINE_ERRORS, event); }

void put_l1_event(text_sink& out, const record_header& record, std::uint32_t original_length) {
    const std::uint32_t event = record.channel_info & 0xFF;
    if (const table_text error = line_error_name(static_cast<int>(event))) {
        print_to<"%s[%04ld]">(out, error, original_length);
        return;
    }
    print_named_to(out, event_name(event, record.record_flags), record.record_flags);
}

void dump_l1_event(const record_header& record, octets payload, std::uint32_t original_length, std::string_view header,
                   std::string_view delta) {
    print<"%s">(header);
    put_l1_event(standard_output, record, original_length);
    print<"%s">(delta);
    if (line_error_name(static_cast<int>(record.channel_info & 0xFF))) {
        hex_dump(payload, payload.length, 16, 6);
        print<"\n">();
    }
}

}  // namespace ifwatch
