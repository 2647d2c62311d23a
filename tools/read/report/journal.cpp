#include "read/report/journal.h"

#include <algorithm>
#include <functional>

#include "base/print.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

// A place, a label of foreign text, the words, how often, and another place.
constexpr std::size_t MAX_LINE = trouble_list::MAX_TEXT + std::size_t{4} * MAX_FOREIGN_TEXT + 128;

}  // namespace

void trouble_list::add(place at, std::string_view label, std::string_view text) {
    const std::size_t hash = std::hash<std::string_view>()(text);
    const auto same = std::ranges::find_if(
        entries_, [&](const entry& known) { return known.hash == hash && known.text == text && known.label == label; });
    if (same != entries_.end()) {
        ++same->times;
        same->last = std::max(same->last, at);
        if (at < same->first) {
            same->first = at;
            std::ranges::stable_sort(entries_, {}, &entry::first);
        }
        return;
    }
    const auto behind = std::ranges::upper_bound(entries_, at, {}, &entry::first);
    if (entries_.size() == KEPT) {
        ++dropped_;
        if (behind == entries_.end()) {
            return;
        }
        entries_.pop_back();
    }
    entries_.insert(behind, {at, at, 1, hash, std::string(label), std::string(text)});
}

void trouble_list::print_lines() const {
    const std::size_t shown = std::min(entries_.size(), SHOWN);
    for (std::size_t i = 0; i < shown; ++i) {
        const entry& line = entries_[i];
        text_buffer<MAX_LINE> text;
        print_to<"%s %s: %s">(text, place_text(line.first), line.label, line.text);
        if (line.times > 1) {
            print_to<" (%lu times, the last at %s)">(text, line.times, place_text(line.last));
        }
        print<"  ">();
        print_broken(text.text(), 2, 6);
    }
    if (const std::uint64_t more = entries_.size() - shown + dropped_; more > 0) {
        print<"  and %lu more\n">(more);
    }
}

}  // namespace ifwatch::reporting
