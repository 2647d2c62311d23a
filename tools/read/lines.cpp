#include "read/lines.h"

#include <algorithm>
#include <utility>

#include "display/record_display.h"

namespace ifwatch::read {

namespace {

/// What the lines of a capture are told apart by.
std::string name_of(const capture::capture_interface& described, bool own, std::size_t number) {
    if (described.name.empty()) {
        return "interface " + std::to_string(number);
    }
    return own ? described.name.substr(0, described.name.find(' ')) : described.name;
}

}  // namespace

known_interface& line_table::interface_of(const capture::captured_packet& packet,
                                          const capture::capture_reader& reader) {
    if (packet.section != section_) {
        section_ = packet.section;
        interfaces_.clear();
        lines_.clear();
    }
    if (packet.interface_id >= interfaces_.size()) {
        interfaces_.resize(packet.interface_id + 1);
    }
    known_interface& known = interfaces_[packet.interface_id];
    if (!known.seen) {
        const capture::capture_interface& described = reader.interface_of(packet);
        known = {.seen = true,
                 .link_type = described.link_type,
                 .source = capture::find_packet_source(described, channel_type_)};
    }
    return known;
}

traced_line& line_table::line_of(known_interface& interface, const capture::captured_packet& packet,
                                 const capture::capture_reader& reader) {
    if (interface.line == nullptr) {
        const capture::capture_interface& described = reader.interface_of(packet);
        const bool own = interface.source->own;
        std::string name = name_of(described, own, packet.interface_id);
        std::string router = own ? described.description.substr(0, described.description.find(": ")) : "";
        const auto same = std::ranges::find_if(
            lines_, [&](const auto& line) { return own && line->router == router && line->name == name; });
        interface.line = same != lines_.end() ? same->get() : &add_line(interface.source->channel_type);
        interface.line->name = std::move(name);
        interface.line->router = std::move(router);
    }
    interface.line->used = packet.number;
    return *interface.line;
}

traced_line& line_table::add_line(int channel_type) {
    if (lines_.size() == MAX_LINES) {
        make_room();
    }
    traced_line& line = *lines_.emplace_back(std::make_unique<traced_line>());
    init_display_context(line.context);
    line.context.channel_type = channel_type;
    line.context.mode_flags = decoders_.mode_flags;
    line.context.tei_filter = decoders_.tei_filter;
    line.context.cref_filter = decoders_.cref_filter;
    apply_default_flags(line.context);
    return line;
}

void line_table::make_room() {
    const auto oldest = std::ranges::min_element(lines_, {}, [](const auto& line) { return line->used; });
    for (known_interface& interface : interfaces_) {
        if (interface.line == oldest->get()) {
            interface.line = nullptr;
        }
    }
    lines_.erase(oldest);
}

}  // namespace ifwatch::read
