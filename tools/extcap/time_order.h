#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "extcap/record_inbox.h"

namespace ifwatch::extcap {

/// Brings the records of several sessions into the order of the router's clock: each waits from its arrival until the
/// window has passed, and leaves in its turn. Its memory is that of the inboxes, which it merges.
class time_order {
public:
    static constexpr std::int64_t WINDOW = 50;  // milliseconds

    /// Lets the record that was just taken from the inbox wait. `now`, in milliseconds, never decreases, and what is
    /// overdue at that time has left.
    void add(record_inbox& inbox, waiting_record record, std::int64_t now);

    [[nodiscard]] bool empty() const { return heap_.empty(); }
    /// Whether a record has waited long enough; it leaves when those from before it have left.
    [[nodiscard]] bool overdue(std::int64_t now);
    /// Milliseconds until one is; -1 when none waits.
    [[nodiscard]] int until_due(std::int64_t now);

    /// The inbox whose first record is next.
    [[nodiscard]] record_inbox& next() const { return *heap_.front().inbox; }
    /// Takes that record out.
    void drop_next();

private:
    static constexpr std::size_t SLOTS = 64;  // milliseconds, more than the window

    struct source {
        std::uint64_t order = 0;  // of its first record
        record_inbox* inbox = nullptr;
    };

    void put(std::size_t place, source what);
    void rise(std::size_t place, source what);
    void sink(std::size_t place, source what);

    std::vector<source> heap_;                    // none after one of its children, 2i + 1 and 2i + 2
    std::array<std::uint32_t, SLOTS> arrived_{};  // records that wait, by the millisecond of their arrival
    std::int64_t oldest_ = 0;                     // none that waits has arrived before
};

}  // namespace ifwatch::extcap
