#pragma once

#include <cstdint>
#include <vector>

namespace ifwatch::extcap {

/// The clock of a router, whose time stamps in milliseconds begin anew after 2^32 ms and whenever it restarts, made
/// into one time line for all of its interfaces.
class router_clock {
public:
    /// Where an interface is on the line.
    struct follower {
        bool started = false;
        std::uint32_t period = 0;
        std::uint32_t stamp = 0;
        std::int64_t now = 0;
    };

    /// When a record arrived.
    struct arrival {
        std::int64_t wall_ms = 0;    // since 1970
        std::int64_t steady_ms = 0;  // of a clock that nobody sets
        bool behind_gap = false;     // the first record of a session that is not the interface's first
    };

    struct moment {
        std::uint64_t order = 0;  // later records of any interface have a greater one
        bool restarted = false;   // the router's clock was found to have begun anew
    };

    /// `keeps_stamps`: the times are the router's own; otherwise they begin with the wall clock, and again when the
    /// router has restarted.
    explicit router_clock(bool keeps_stamps) : keeps_stamps_(keeps_stamps) {}

    moment at(follower& who, std::uint32_t stamp, const arrival& came);

    /// The time of a moment for the capture, in milliseconds.
    [[nodiscard]] std::uint64_t time_of(std::uint64_t order) const;

private:
    /// From a start of the router's clock to the next.
    struct period {
        std::int64_t first = 0;  // time of the record that it began with
        std::int64_t offset = 0;
        std::int64_t steady_ms = 0;
        std::int64_t latest = 0;
    };

    [[nodiscard]] static bool fits(const period& one, std::uint32_t stamp, const arrival& came);
    [[nodiscard]] bool begins_anew(const follower& who, std::uint32_t stamp, const arrival& came) const;
    [[nodiscard]] std::size_t period_to_join(const follower& who, std::uint32_t stamp, const arrival& came) const;
    void begin_period(std::uint32_t stamp, const arrival& came);

    bool keeps_stamps_;
    std::vector<period> periods_;
};

}  // namespace ifwatch::extcap
