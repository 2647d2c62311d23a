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
    if (!who.started || restarted || came.behind_gap) {
        const std::size_t number = period_to_join(who, stamp, came);
        restarted = restarted || (who.started && who.period != number);
        who.period = static_cast<std::uint32_t>(number);
        who.now = nearest(stamp, periods_[number].latest);
    } else {
        who.now += static_cast<std::int32_t>(stamp - who.stamp);
    }
    who.started = true;
    who.stamp = stamp;
    if (who.period + 1 == periods_.size()) {
        periods_.back().latest = std::max(periods_.back().latest, who.now);
    }
    return {std::uint64_t{who.period} << TIME_BITS | static_cast<std::uint64_t>(who.now + TIME_ZERO), restarted};
}

/// Whether the stamp is of another start of the clock than the newest that is known, or, within a session, than the
/// interface's own.
bool router_clock::begins_anew(const follower& who, std::uint32_t stamp, const arrival& came) const {
    if (!came.behind_gap) {
        return static_cast<std::int32_t>(stamp - who.stamp) < RESTART_STEP;
    }
    const bool no_later = nearest(stamp, periods_.back().latest) <= who.now;
    return (who.period + 1 == periods_.size() && no_later) || !fits(periods_.back(), stamp, came);
}

/// Whether the stamp is about what the clock shows by now if it has not begun anew since.
bool router_clock::fits(const period& one, std::uint32_t stamp, const arrival& came) {
    const std::int64_t since = came.steady_ms - one.steady_ms;
    return std::abs(nearest(stamp, one.latest) - (one.first + since)) <= TOLERANCE + since / TOLERANCE_PART;
}

/// The newest period, but for an interface whose first record is still of the one before.
std::size_t router_clock::period_to_join(const follower& who, std::uint32_t stamp, const arrival& came) const {
    const std::size_t newest = periods_.size() - 1;
    const bool older =
        !who.started && newest > 0 && !fits(periods_[newest], stamp, came) && fits(periods_[newest - 1], stamp, came);
    return older ? newest - 1 : newest;
}

void router_clock::begin_period(std::uint32_t stamp, const arrival& came) {
    const auto first = std::int64_t{stamp};
    periods_.push_back({first, keeps_stamps_ ? 0 : came.wall_ms - first, came.steady_ms, first});
}

std::uint64_t router_clock::time_of(std::uint64_t order) const {
    const auto now = static_cast<std::int64_t>(order & ((std::uint64_t{1} << TIME_BITS) - 1)) - TIME_ZERO;
    const std::size_t number = std::min(static_cast<std::size_t>(order >> TIME_BITS), periods_.size() - 1);
    return static_cast<std::uint64_t>(std::max<std::int64_t>(now + periods_[number].offset, 0));
}

}  // namespace ifwatch::extcap
