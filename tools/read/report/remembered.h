#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <utility>
#include <vector>

#include "read/report/journal.h"

namespace ifwatch::reporting {

/// What a tracker remembers of its interface: calls, sessions or pairs, found by a key while they last. There are never
/// more than MOST of them, nor than all trackers together may have: the oldest that is over makes room, or the oldest,
/// and is only counted from then on.
///
/// An entry has a member `first`, the place where it began.
template <class Key, class Entry>
class remembered {
public:
    static constexpr std::size_t MOST = 4096;

    /// The entry that lasts under this key; nullptr: none.
    [[nodiscard]] Entry* find(const Key& key) {
        const auto found = lasting_.find(key);
        return found != lasting_.end() ? &found->second->entry : nullptr;
    }

    /// A new entry under this key; one that lasts under it is over.
    Entry& begin(const Key& key, allowance& shared, Entry entry) {
        finish(key);
        make_room(shared);
        open_.push_back({key, std::move(entry)});
        lasting_.emplace(key, std::prev(open_.end()));
        return open_.back().entry;
    }

    /// The entry under this key is over: it stays in the report, but is not found any more.
    void finish(const Key& key) {
        if (const auto found = lasting_.find(key); found != lasting_.end()) {
            over_.splice(over_.end(), open_, found->second);
            lasting_.erase(found);
        }
    }

    /// Whether this key is among those of the last few that are over.
    [[nodiscard]] bool ended_lately(const Key& key) const {
        constexpr int few = 16;
        int looked_at = 0;
        for (auto one = over_.rbegin(); one != over_.rend() && looked_at < few; ++one, ++looked_at) {
            if (one->key == key) {
                return true;
            }
        }
        return false;
    }

    /// All of them that are still remembered, in the order of time.
    [[nodiscard]] std::vector<const Entry*> in_order() const {
        std::vector<const Entry*> all;
        all.reserve(size());
        for (const auto* const list : {&over_, &open_}) {
            for (const item& one : *list) {
                all.push_back(&one.entry);
            }
        }
        std::ranges::stable_sort(all, {}, [](const Entry* one) { return one->first; });
        return all;
    }

    /// Calls `visit` with each entry that still lasts, in the order in which they began.
    template <class Visit>
    void for_each_lasting(Visit visit) {
        for (item& one : open_) {
            visit(one.entry);
        }
    }

    [[nodiscard]] std::size_t size() const { return open_.size() + over_.size(); }
    [[nodiscard]] bool empty() const { return size() == 0 && forgotten_ == 0; }

    /// How many were given up to make room.
    [[nodiscard]] std::uint64_t forgotten() const { return forgotten_; }

private:
    struct item {
        Key key;
        Entry entry;
    };

    void make_room(allowance& shared) {
        const bool full = size() >= MOST || (shared.left == 0 && size() > 0);
        if (!full) {
            shared.left -= shared.left > 0 ? 1 : 0;
            return;
        }
        ++forgotten_;
        if (!over_.empty()) {
            over_.pop_front();
            return;
        }
        lasting_.erase(open_.front().key);
        open_.pop_front();
    }

    std::list<item> open_;  // in the order in which they began
    std::list<item> over_;  // in the order in which they ended
    std::map<Key, typename std::list<item>::iterator> lasting_;
    std::uint64_t forgotten_ = 0;
};

}  // namespace ifwatch::reporting
