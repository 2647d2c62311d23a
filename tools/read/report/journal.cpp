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
    ++worded_;
    const std::size_t hash = std::hash<std::string_view>()(text);
    for (std::size_t i = 0; i < hashes_.size(); ++i) {
        entry& known = entries_[i];
        if (hashes_[i] == hash && known.text == text && known.label == label) {
            ++known.times;
            known.first = std::min(known.first, at);
            known.last = std::max(known.last, at);
            return;
        }
    }
    if (entries_.size() < KEPT) {
        entries_.push_back({at, at, 1, std::string(label), std::string(text)});
        hashes_.push_back(hash);
        return;
    }
    ++dropped_;
    const auto latest = std::ranges::max_element(entries_, {}, &entry::first);
    if (at < latest->first) {
        hashes_[static_cast<std::size_t>(latest - entries_.begin())] = hash;
        *latest = {at, at, 1, std::string(label), std::string(text)};
    }
}

void trouble_list::print_lines() const {
    std::vector<const entry*> in_order;
    in_order.reserve(entries_.size());
    for (const entry& one : entries_) {
        in_order.push_back(&one);
    }
    std::ranges::stable_sort(in_order, {}, [](const entry* one) { return one->first; });
    const std::size_t shown = std::min(entries_.size(), SHOWN);
    for (std::size_t i = 0; i < shown; ++i) {
        const entry& line = *in_order[i];
        text_buffer<MAX_LINE> text;
        print_to<"%s %s: %s">(text, place_text(line.first), line.label, line.text);
        if (line.times > 1) {
            print_to<" (%lu times%s, the last at %s)">(text, line.times, only_counted_ > 0 ? " at least" : "",
                                                       place_text(line.last));
        }
        print<"  ">();
        print_broken(text.text(), 2, 6);
    }
    if (const std::uint64_t more = entries_.size() - shown + dropped_ + only_counted_; more > 0) {
        print<"  and %lu more\n">(more);
    }
}

}  // namespace ifwatch::reporting
