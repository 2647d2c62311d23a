#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <type_traits>
#include <vector>

#include "read/report/journal.h"

namespace ifwatch::reporting {

/// An odd number that nobody outside can know, one for a run: whoever makes a capture cannot make keys collide.
[[nodiscard]] std::uint64_t hash_factor();

/// What a tracker remembers of its interface: calls, sessions or pairs, found by a key while they last. There are never
/// more of them than an allowance grants: the oldest that is over makes room, or else the oldest, and is only counted
/// from then on. Of entries with a count `times` it is the one that happened least of the FEW oldest: those that
/// happened most stay.
///
/// A key is a number, or a structure without padding that can be compared; an entry has a member `first`, the place
/// where it began. References to entries stay until that entry is given up.
template <class Key, class Entry>
class remembered {
    static_assert(std::has_unique_object_representations_v<Key>, "the octets of a key are hashed");

public:
    /// The entry that lasts under this key; nullptr: none.
    [[nodiscard]] Entry* find(const Key& key) {
        const int at = index_of(key);
        return at != NONE ? &item_at(at).entry : nullptr;
    }

    /// A new entry under this key; one that lasts under it is over.
    Entry& begin(const Key& key, allowance& shared, const Entry& entry) {
        finish(key);
        const int at = take_slot(shared);
        item& taken = item_at(at);
        taken.key = key;
        taken.entry = entry;
        append(open_, at);
        add_to_index(at);
        return taken.entry;
    }

    /// The entry under this key is over: it stays in the report, but is not found any more.
    void finish(const Key& key) {
        if (const int at = index_of(key); at != NONE) {
            remove_from_index(at);
            unlink(open_, at);
            append(over_, at);
            ended_[finished_++ % FEW] = key;
        }
    }

    /// Whether this key is among those of the last few that are over.
    [[nodiscard]] bool ended_lately(const Key& key) const {
        const auto few = static_cast<std::size_t>(std::min<std::uint64_t>(finished_, FEW));
        return std::find(ended_.begin(), ended_.begin() + static_cast<std::ptrdiff_t>(few), key) !=
               ended_.begin() + static_cast<std::ptrdiff_t>(few);
    }

    /// All of them that are still remembered, in the order of time.
    [[nodiscard]] std::vector<const Entry*> in_order() const {
        std::vector<const Entry*> all;
        all.reserve(size());
        for (const item& one : items_) {
            all.push_back(&one.entry);
        }
        std::ranges::stable_sort(all, {}, [](const Entry* one) { return one->first; });
        return all;
    }

    /// Calls `visit` with each entry that still lasts, in the order in which they began.
    template <class Visit>
    void for_each_lasting(Visit visit) {
        for (int at = open_.first; at != NONE; at = item_at(at).next) {
            visit(item_at(at).entry);
        }
    }

    /// Calls `visit` with each entry that still lasts, in that order, and all of them are over.
    template <class Visit>
    void finish_each(Visit visit) {
        while (open_.first != NONE) {
            item& one = item_at(open_.first);
            visit(one.entry);
            finish(one.key);
        }
    }

    [[nodiscard]] std::size_t size() const { return items_.size(); }
    [[nodiscard]] bool empty() const { return items_.empty(); }

    /// How many were given up to make room.
    [[nodiscard]] std::uint64_t forgotten() const { return forgotten_; }

private:
    static constexpr int NONE = -1;
    static constexpr std::size_t FEW = 16;

    struct item {
        Key key{};
        Entry entry{};
        int previous = NONE;  // of its list
        int next = NONE;
        int chained = NONE;  // the next of its bucket
    };
    struct item_list {
        int first = NONE;
        int last = NONE;
    };

    item& item_at(int at) { return items_[static_cast<std::size_t>(at)]; }
    [[nodiscard]] const item& item_at(int at) const { return items_[static_cast<std::size_t>(at)]; }

    int take_slot(allowance& shared) {
        const bool full = size() >= shared.of_each || (shared.left == 0 && size() > 0);
        if (!full) {
            shared.left -= shared.left > 0 ? 1 : 0;
            items_.emplace_back();
            return static_cast<int>(size()) - 1;
        }
        ++forgotten_;
        const bool one_is_over = over_.first != NONE;
        const int at = one_is_over ? over_.first : least_of_oldest();
        if (!one_is_over) {
            remove_from_index(at);
        }
        unlink(one_is_over ? over_ : open_, at);
        return at;
    }

    /// Of those that last. What happened once cannot have happened less: a flood of such is not looked through.
    [[nodiscard]] int least_of_oldest() const {
        int least = open_.first;
        if constexpr (requires(const Entry& one) { one.times; }) {
            int at = least;
            for (std::size_t looked_at = 0; looked_at < FEW && at != NONE && item_at(least).entry.times > 1;
                 ++looked_at) {
                least = item_at(at).entry.times < item_at(least).entry.times ? at : least;
                at = item_at(at).next;
            }
        }
        return least;
    }

    void append(item_list& list, int at) {
        item_at(at).previous = list.last;
        item_at(at).next = NONE;
        (list.last != NONE ? item_at(list.last).next : list.first) = at;
        list.last = at;
    }

    void unlink(item_list& list, int at) {
        const item& one = item_at(at);
        (one.previous != NONE ? item_at(one.previous).next : list.first) = one.next;
        (one.next != NONE ? item_at(one.next).previous : list.last) = one.previous;
    }

    // --- Found by key

    int& bucket_of(const Key& key) {
        std::uint64_t hash = 0;
        for (std::size_t done = 0; done < sizeof(Key); done += sizeof(std::uint64_t)) {
            std::uint64_t part = 0;
            std::memcpy(&part, reinterpret_cast<const char*>(&key) + done, std::min(sizeof part, sizeof(Key) - done));
            hash = (hash ^ part ^ hash >> 32) * factor_;
        }
        return buckets_[static_cast<std::size_t>(hash >> (64 - std::bit_width(buckets_.size() - 1)))];
    }

    int index_of(const Key& key) {
        if (buckets_.empty()) {
            return NONE;
        }
        int at = bucket_of(key);
        while (at != NONE && !(item_at(at).key == key)) {
            at = item_at(at).chained;
        }
        return at;
    }

    void add_to_index(int at) {
        if (buckets_.size() < size()) {
            grow_index();
        } else {
            chain(at);
        }
    }

    void chain(int at) {
        int& bucket = bucket_of(item_at(at).key);
        item_at(at).chained = bucket;
        bucket = at;
    }

    void remove_from_index(int at) {
        int* link = &bucket_of(item_at(at).key);
        while (*link != at) {
            link = &item_at(*link).chained;
        }
        *link = item_at(at).chained;
    }

    /// Twice as many buckets, and every entry that lasts in its own.
    void grow_index() {
        constexpr std::size_t fewest = 16;
        buckets_.assign(std::max(fewest, buckets_.size() * 2), NONE);
        for (int at = open_.first; at != NONE; at = item_at(at).next) {
            chain(at);
        }
    }

    std::uint64_t factor_ = hash_factor();
    std::deque<item> items_;
    item_list open_;  // in the order in which they began
    item_list over_;  // in the order in which they ended
    std::vector<int> buckets_;
    std::array<Key, FEW> ended_{};  // the keys of those that were over last
    std::uint64_t finished_ = 0;
    std::uint64_t forgotten_ = 0;
};

}  // namespace ifwatch::reporting
