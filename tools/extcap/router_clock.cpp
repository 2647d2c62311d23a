#include "extcap/router_clock.h"

#include <algorithm>
#include <cstdlib>

namespace ifwatch::extcap {

namespace {

constexpr std::int64_t RESTART_STEP = -10'000;  // a step back by more is no disorder of the records
constexpr std::int64_t TOLERANCE = 5'000;       // of a clock behind a gap, and a part of the time since it was compared
constexpr std::int64_t TOLERANCE_PART = 256;

constexpr int TIME_BITS = 44;
constexpr std::int64_t TIME_ZERO = std::int64_t{1} << 40;  // a record may be from before the first

/// The time that a stamp stands for, next to one that is known.
std::int64_t nearest(std::uint32_t stamp, std::int64_t known) {
    return known + static_cast<std::int32_t>(stamp - static_cast<std::uint32_t>(known));
}

}  // namespace

router_clock::moment router_clock::at(follower& who, std::uint32_t stamp, const arrival& came) {
    bool restarted = false;
    if (periods_.empty()) {
        begin_period(stamp, came);
    } else if (who.started && begins_anew(who, stamp, came)) {
        restarted = true;
        if (who.period + 1 == periods_.size() || came.behind_gap) {
            begin_period(stamp, came);
        }
    }
    period& current = periods_.back();
    const auto number = static_cast<std::uint32_t>(periods_.size() - 1);
    const bool joins = !who.started || restarted || came.behind_gap;
    restarted = restarted || (who.started && joins && who.period != number);
    if (joins) {
        who.period = number;
        who.now = nearest(stamp, current.latest);
    } else {
        who.now += static_cast<std::int32_t>(stamp - who.stamp);
    }
    who.started = true;
    who.stamp = stamp;
    if (who.period == number) {
        current.latest = std::max(current.latest, who.now);
    }
    return {std::uint64_t{who.period} << TIME_BITS | static_cast<std::uint64_t>(who.now + TIME_ZERO), restarted};
}

/// Whether the stamp is of another start of the clock than the newest that is known, or, within a session, than the
/// interface's own.
bool router_clock::begins_anew(const follower& who, std::uint32_t stamp, const arrival& came) const {
    if (!came.behind_gap) {
        return static_cast<std::int32_t>(stamp - who.stamp) < RESTART_STEP;
    }
    const period& current = periods_.back();
    const std::int64_t now = nearest(stamp, current.latest);
    if (who.period + 1 == periods_.size() && now <= who.now) {
        return true;
    }
    const std::int64_t since = came.steady_ms - current.steady_ms;
    return std::abs(now - (current.first + since)) > TOLERANCE + since / TOLERANCE_PART;
}

void router_clock::begin_period(std::uint32_t stamp, const arrival& came) {
    const auto first = std::int64_t{stamp};
    periods_.push_back({first, keeps_stamps_ ? 0 : came.wall_ms - first, came.steady_ms, first});
}

std::uint64_t router_clock::time_of(std::uint64_t order) const {
    const auto now = static_cast<std::int64_t>(order & ((std::uint64_t{1} << TIME_BITS) - 1)) - TIME_ZERO;
    const std::size_t number = std::min<std::size_t>(order >> TIME_BITS, periods_.size() - 1);
    return static_cast<std::uint64_t>(std::max<std::int64_t>(now + periods_[number].offset, 0));
}

}  // namespace ifwatch::extcap
