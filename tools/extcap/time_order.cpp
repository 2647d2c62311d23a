#include "extcap/time_order.h"

#include <algorithm>

namespace ifwatch::extcap {

void time_order::add(record_inbox& inbox, waiting_record record, std::int64_t now) {
    if (heap_.empty()) {
        oldest_ = now;
    }
    record.slot = static_cast<std::uint8_t>(static_cast<std::uint64_t>(now) % SLOTS);
    ++arrived_[record.slot];
    const bool is_first = inbox.keep(record);
    if (inbox.place() == record_inbox::NOWHERE) {
        heap_.emplace_back();
        rise(heap_.size() - 1, {record.order, &inbox});
    } else if (is_first) {
        rise(inbox.place(), {record.order, &inbox});
    }
}

bool time_order::overdue(std::int64_t now) {
    if (heap_.empty()) {
        return false;
    }
    while (oldest_ <= now - WINDOW) {
        if (arrived_[static_cast<std::uint64_t>(oldest_) % SLOTS] != 0) {
            return true;
        }
        ++oldest_;
    }
    return false;
}

int time_order::until_due(std::int64_t now) {
    if (heap_.empty()) {
        return -1;
    }
    while (arrived_[static_cast<std::uint64_t>(oldest_) % SLOTS] == 0) {
        ++oldest_;
    }
    return static_cast<int>(std::max<std::int64_t>(oldest_ + WINDOW - now, 0));
}

void time_order::drop_next() {
    record_inbox& inbox = next();
    --arrived_[inbox.first().slot];
    inbox.drop_first();
    if (!inbox.empty()) {
        sink(0, {inbox.first().order, &inbox});
        return;
    }
    inbox.move_to(record_inbox::NOWHERE);
    const source last = heap_.back();
    heap_.pop_back();
    if (!heap_.empty()) {
        sink(0, last);
    }
}

void time_order::put(std::size_t place, source what) {
    heap_[place] = what;
    what.inbox->move_to(place);
}

void time_order::rise(std::size_t place, source what) {
    for (; place > 0 && what.order < heap_[(place - 1) / 2].order; place = (place - 1) / 2) {
        put(place, heap_[(place - 1) / 2]);
    }
    put(place, what);
}

void time_order::sink(std::size_t place, source what) {
    while (2 * place + 1 < heap_.size()) {
        std::size_t child = 2 * place + 1;
        if (child + 1 < heap_.size() && heap_[child + 1].order < heap_[child].order) {
            ++child;
        }
        if (what.order <= heap_[child].order) {
            break;
        }
        put(place, heap_[child]);
        place = child;
    }
    put(place, what);
}

}  // namespace ifwatch::extcap
