#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "trace/record_stream.h"

namespace ifwatch::extcap {

/// A whole record that waits for its turn.
struct waiting_record {
    std::uint64_t order = 0;     // as router_clock gives it
    std::uint32_t position = 0;  // in the stream, modulo 2^32
    std::uint32_t lost = 0;      // records between the one before and this
    std::uint16_t note = 0;      // the number of what is to be told of it; 0: nothing
    std::uint8_t slot = 0;       // of time_order
};

/// What one session has sent and is not written yet, in one buffer that never grows: octets as they arrive, and where
/// in them whole records wait. So half a record holds up nobody else.
class record_inbox {
public:
    static constexpr std::size_t CAPACITY = std::size_t{32} << 10;

    /// What lies behind the records that were taken.
    enum class found : std::uint8_t {
        RECORD,
        PART,    // of one, or nothing
        BROKEN,  // a record shorter than its header or longer than can be held; a message has told
    };

    /// How many octets it is to hold, at least CAPACITY; before it is opened the first time. What is not needed takes
    /// no memory.
    void hold(std::size_t capacity) { capacity_ = capacity; }

    /// Makes an empty one. Needed before anything below.
    void open();

    /// Whether a record of any length can be read on to its end.
    [[nodiscard]] bool has_room() const { return has_room(LONGEST_RECORD); }
    /// Whether so much can be read that the next time is some way off.
    [[nodiscard]] bool has_ample_room() const { return has_room(capacity_ / 2); }
    /// Where the next octets go. Records that wait may move; what first() has given is no longer there.
    [[nodiscard]] std::span<std::uint8_t> room();
    void filled(std::size_t count) { end_ += count; }

    /// Takes the next record.
    found next(std::span<std::uint8_t>& record);
    /// Tells why no more can come: `got` is what the read returned, 0 or -1. Returns END, or BROKEN also inside the
    /// header of a record.
    [[nodiscard]] record_read tell_end(int got) const;

    /// Lets the record that was just taken wait, behind those of its own time. True when it is now the first.
    bool keep(waiting_record record);
    [[nodiscard]] bool empty() const { return first_ == waiting_.size(); }
    /// Whether no further record may wait until one has left.
    [[nodiscard]] bool full() const { return waiting() == most_waiting(); }
    [[nodiscard]] const waiting_record& first() const { return waiting_[first_]; }
    [[nodiscard]] std::span<std::uint8_t> first_octets() const;
    void drop_first();

    /// Its place among those of a time_order.
    static constexpr std::size_t NOWHERE = SIZE_MAX;
    [[nodiscard]] std::size_t place() const { return place_; }
    void move_to(std::size_t place) { place_ = place; }

    /// Whose it is, as a number.
    [[nodiscard]] std::size_t owner() const { return owner_; }
    void belong_to(std::size_t owner) { owner_ = owner; }

private:
    static constexpr std::size_t LONGEST_RECORD = RECORD_HEADER_LENGTH + RECORD_DATA_MAXIMUM;

    [[nodiscard]] std::size_t waiting() const { return waiting_.size() - first_; }
    [[nodiscard]] std::size_t most_waiting() const { return capacity_ / 32; }
    [[nodiscard]] bool has_room(std::size_t enough) const;
    [[nodiscard]] std::size_t begin_of_used() const;
    [[nodiscard]] std::size_t offset_of(const waiting_record& record) const { return record.position - base_; }

    std::unique_ptr<std::uint8_t[]> octets_;
    std::size_t capacity_ = CAPACITY;
    std::uint32_t base_ = 0;  // the position of the first octet
    std::size_t begin_ = 0;   // of what was not taken
    std::size_t end_ = 0;
    std::size_t last_ = 0;  // where the record that was taken last begins
    std::vector<waiting_record> waiting_;
    std::size_t first_ = 0;
    std::size_t place_ = NOWHERE;
    std::size_t owner_ = 0;
    std::size_t mixed_ = 0;  // so many of those that wait may not stand in the order of their octets
};

}  // namespace ifwatch::extcap
