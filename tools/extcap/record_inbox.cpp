#include "extcap/record_inbox.h"

#include <algorithm>
#include <cstring>

#include "base/byte_order.h"

namespace ifwatch::extcap {

namespace {

constexpr std::size_t WORTH_MOVING = 128;  // records that were written

}  // namespace

void record_inbox::open() {
    if (octets_ == nullptr) {
        octets_ = std::make_unique_for_overwrite<std::uint8_t[]>(capacity_);
    }
    base_ = 0;
    begin_ = end_ = last_ = 0;
    waiting_.clear();
    first_ = 0;
    mixed_ = 0;
}

std::size_t record_inbox::begin_of_used() const {
    if (mixed_ == 0) {
        return empty() ? begin_ : offset_of(first());
    }
    std::size_t begin = begin_;
    for (std::size_t i = first_; i < waiting_.size(); ++i) {
        begin = std::min(begin, offset_of(waiting_[i]));
    }
    return begin;
}

bool record_inbox::has_room(std::size_t enough) const {
    return !full() && capacity_ - (end_ - begin_of_used()) >= enough;
}

std::span<std::uint8_t> record_inbox::room() {
    if (capacity_ - end_ < LONGEST_RECORD) {
        const std::size_t begin = begin_of_used();
        std::memmove(octets_.get(), &octets_[begin], end_ - begin);
        base_ += static_cast<std::uint32_t>(begin);
        begin_ -= begin;
        end_ -= begin;
    }
    return {&octets_[end_], capacity_ - end_};
}

record_inbox::found record_inbox::next(std::span<std::uint8_t>& record) {
    const std::size_t held = end_ - begin_;
    if (held < RECORD_HEADER_LENGTH) {
        return found::PART;
    }
    const int announced = announced_data(record_octets(&octets_[begin_], RECORD_HEADER_LENGTH));
    if (!can_be_held(announced)) {
        report_no_data(0, announced);
        return found::BROKEN;
    }
    const std::size_t length = RECORD_HEADER_LENGTH + static_cast<std::size_t>(announced);
    if (held < length) {
        return found::PART;
    }
    record = {&octets_[begin_], length};
    last_ = begin_;
    begin_ += length;
    return found::RECORD;
}

record_read record_inbox::tell_end(int got) const {
    if (end_ - begin_ < RECORD_HEADER_LENGTH) {
        const record_read end = report_no_header(got);
        return begin_ == end_ ? end : record_read::BROKEN;
    }
    return report_no_data(got, announced_data(record_octets(&octets_[begin_], RECORD_HEADER_LENGTH)));
}

bool record_inbox::keep(waiting_record record) {
    record.position = base_ + static_cast<std::uint32_t>(last_);
    if (waiting_.capacity() == 0) {
        waiting_.reserve(most_waiting() + WORTH_MOVING);
    }
    if (first_ >= WORTH_MOVING || empty()) {
        waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(first_));
        first_ = 0;
    }
    std::size_t at = waiting_.size();
    waiting_.push_back(record);
    if (at > first_ && waiting_[at - 1].order > record.order) {
        mixed_ = waiting();
    }
    for (; at > first_ && waiting_[at - 1].order > record.order; --at) {
        waiting_[at] = waiting_[at - 1];
    }
    waiting_[at] = record;
    return at == first_;
}

std::span<std::uint8_t> record_inbox::first_octets() const {
    const std::size_t offset = offset_of(first());
    return {&octets_[offset], load_be16(&octets_[offset])};
}

void record_inbox::drop_first() {
    ++first_;
    mixed_ -= std::min<std::size_t>(mixed_, 1);
    if (empty() && begin_ == end_) {
        base_ += static_cast<std::uint32_t>(end_);
        begin_ = end_ = 0;
    }
}

}  // namespace ifwatch::extcap
