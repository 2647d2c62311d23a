#include "read/lines.h"

#include <algorithm>
#include <utility>

#include "capture/channel_types.h"
#include "capture/link_types.h"
#include "display/mode_flags.h"
#include "display/record_display.h"

namespace ifwatch::read {

namespace {

/// The options are one set for all interfaces: with -p, a B-channel whose frames the capture calls PPP is shown as
/// that, though -2 and -3 are meant for its D-channel.
void prefer_ppp(const known_interface& interface, display_context& context) {
    const bool ppp = interface.source->own && interface.source->channel_type == capture::CHANNEL_B &&
                     interface.link_type == capture::LINK_PPP && (context.mode_flags & MODE_PPP) != 0;
    if (ppp) {
        context.mode_flags &= ~(MODE_LAYER2 | MODE_LAYER3);
    }
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

line_identity line_table::identity_of(const capture::capture_interface& described, std::size_t number) const {
    const auto source = capture::find_packet_source(described, channel_type_);
    if (source && source->own && !described.name.empty()) {
        return {.name = described.name.substr(0, described.name.find(' ')),
                .router = described.description.substr(0, described.description.find(": ")),
                .channel_type = source->channel_type};
    }
    return {.name = described.name.empty() ? "interface " + std::to_string(number) : described.name, .number = number};
}

traced_line& line_table::line_of(known_interface& interface, const capture::captured_packet& packet,
                                 const capture::capture_reader& reader) {
    if (interface.line == nullptr) {
        line_identity identity = identity_of(reader.interface_of(packet), packet.interface_id);
        const auto same = std::ranges::find_if(lines_, [&](const auto& line) { return line->identity == identity; });
        interface.line =
            same != lines_.end() ? same->get() : &add_line(std::move(identity), interface.source->channel_type);
        prefer_ppp(interface, interface.line->context);
    }
    interface.line->used = packet.number;
    return *interface.line;
}

bool line_table::has_several_lines(const capture::captured_packet& packet,
                                   const capture::capture_reader& reader) const {
    const line_identity first = identity_of(reader.interface_of(packet), packet.interface_id);
    capture::captured_packet other = packet;
    for (other.interface_id = 0; other.interface_id < reader.interface_count(); ++other.interface_id) {
        if (identity_of(reader.interface_of(other), other.interface_id) != first) {
            return true;
        }
    }
    return false;
}

traced_line& line_table::add_line(line_identity identity, int channel_type) {
    if (lines_.size() == MAX_LINES) {
        make_room();
    }
    traced_line& line = *lines_.emplace_back(std::make_unique<traced_line>());
    line.identity = std::move(identity);
    line.serial = ++serials_;
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
