#pragma once

#include <cstdint>

#include "trace/trace_target.h"

namespace ifwatch {

/// A type of traced interface: what it is called, its code on the wire, and its link type in a PCAP file.
struct ifc_type {
    const char* name;
    std::int16_t code;
    std::int32_t link_type;
};

/// The interface type of a code: the first row that has it (so code 4 is always "WLAN"), "not-found" for -1, and
/// "unknown" for any other code.
[[nodiscard]] const ifc_type& ifc_type_entry(int code);

/// Ends a session set-up with one report line on the error stream: the interface, its type and `text`; in list mode
/// only the text.
void report_line(const trace_target& target, bool list_mode, int channel_type, const char* text);

}  // namespace ifwatch
