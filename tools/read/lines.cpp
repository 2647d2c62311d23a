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
        const bool own = interface.source->own;
        std::string name = name_of(reader.interface_of(packet), own, packet.interface_id);
        const auto same = std::ranges::find_if(
            lines_, [&](const auto& line) { return own && line->own && line->name == name; });
        interface.line = same != lines_.end() ? same->get() : &add_line(std::move(name), *interface.source);
    }
    interface.line->used = packet.number;
    return *interface.line;
}

traced_line& line_table::add_line(std::string name, const capture::packet_source& source) {
    if (lines_.size() == MAX_LINES) {
        make_room();
    }
    traced_line& line = *lines_.emplace_back(std::make_unique<traced_line>());
    line.name = std::move(name);
    line.own = source.own;
    init_display_context(line.context);
    line.context.channel_type = source.channel_type;
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
