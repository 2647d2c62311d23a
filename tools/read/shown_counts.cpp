#include "read/shown_counts.h"

#include <algorithm>

namespace ifwatch::read {

void shown_counts::add_undecoded(std::uint32_t link_type) {
    const auto found = std::ranges::find(undecoded_, link_type, &type_count::link_type);
    if (found != undecoded_.end()) {
        ++found->packets;
    } else if (undecoded_.size() < MAX_TYPES) {
        undecoded_.push_back({link_type, 1});
    } else {
        ++of_further_types_;
    }
}

std::string shown_counts::text() const {
    std::string text = std::to_string(shown_) + (shown_ == 1 ? " packet shown" : " packets shown");
    for (const type_count& count : undecoded_) {
        text += ", " + std::to_string(count.packets) + " of link type " + std::to_string(count.link_type);
    }
    if (of_further_types_ != 0) {
        text += ", " + std::to_string(of_further_types_) + " of further link types";
    }
    text += undecoded_.empty() ? "" : " (no decoder)";
    if (too_short_ != 0) {
        text += ", " + std::to_string(too_short_) + " too short for the header of the link type";
    }
    return text;
}

}  // namespace ifwatch::read
