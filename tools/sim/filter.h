#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "capture/frame_fields.h"

namespace ifwatch::sim {

using capture::frame_fields;
using capture::mac_address;

/// A filter as it comes in the FILTER section: its kind letter and its text.
struct filter_entry {
    char kind = 0;
    std::string text;
};

/// An IP session: what is absent fits everything.
struct ip_session {
    std::optional<std::uint32_t> source;
    std::optional<std::uint32_t> destination;
    std::optional<int> protocol;
    std::optional<int> source_port;
    std::optional<int> destination_port;
};

struct filter_term {
    char kind = 0;  // 'I' one way, 'B' both ways, 's' and 'd' MAC addresses, 'l' LLC frames
    bool negated = false;
    ip_session session;
    mac_address address{};
};

/// Terms are joined by AND, and the groups between two OR joiners by OR: AND binds closer. No group lets everything
/// through.
struct frame_filter {
    std::vector<std::vector<filter_term>> groups;
};

/// Makes a filter of the entries of one session, in their order. On a mistake false, with a one-line `error`. A host
/// that is not given as an address is looked up by name. A joiner with nothing on one side joins nothing.
bool build_filter(std::span<const filter_entry> entries, frame_filter& filter, std::string& error);

/// Whether the router would show this frame. A term about what the frame does not have does not fit; negated it does.
[[nodiscard]] bool passes(const frame_filter& filter, const frame_fields& fields);

}  // namespace ifwatch::sim
