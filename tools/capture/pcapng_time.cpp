#include "capture/pcapng_time.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace ifwatch::capture {

namespace {

constexpr std::uint8_t POWER_OF_TWO = 0x80;
constexpr std::uint64_t NS_PER_S = 1'000'000'000;
constexpr int NS_POWER = 9;
constexpr std::int64_t LATEST = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t EARLIEST = std::numeric_limits<std::int64_t>::min();

struct time_parts {
    std::uint64_t seconds = 0;
    std::uint64_t ns = 0;  // less than a second
};

constexpr int LARGEST_POWER = 19;  // of 10, in 64 bits

constexpr auto POWERS_OF_TEN = [] {
    std::array<std::uint64_t, LARGEST_POWER + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) {
        powers[i] = powers[i - 1] * 10;
    }
    return powers;
}();

/// 10^power, or 0 where 64 bits cannot hold it.
std::uint64_t power_of_ten(int power) {
    return power <= LARGEST_POWER ? POWERS_OF_TEN[static_cast<std::size_t>(power)] : 0;
}

time_parts decimal(std::uint64_t units, int power) {
    const std::uint64_t second = power_of_ten(power);
    if (second == 0) {  // less than a second in all, and in units too small for any nanosecond but the first few
        const std::uint64_t ns = power_of_ten(power - NS_POWER);
        return {0, ns != 0 ? units / ns : 0};
    }
    const std::uint64_t rest = units % second;
    return {units / second,
            power <= NS_POWER ? rest * power_of_ten(NS_POWER - power) : rest / power_of_ten(power - NS_POWER)};
}

time_parts binary(std::uint64_t units, int power) {
    constexpr int bits = 64;
    constexpr int exact = 34;  // bits of a fraction that can be multiplied by 10^9
    if (power == 0) {
        return {units, 0};
    }
    std::uint64_t fraction = power < bits ? units & ((std::uint64_t{1} << power) - 1) : units;
    const std::uint64_t seconds = power < bits ? units >> power : 0;
    if (power > exact) {
        fraction = power - exact < bits ? fraction >> (power - exact) : 0;
        power = exact;
    }
    return {seconds, fraction * NS_PER_S >> power};
}

}  // namespace

std::int64_t nanoseconds(std::uint64_t units, const time_scale& scale) {
    const int power = scale.resolution & ~POWER_OF_TWO;
    const time_parts parts = (scale.resolution & POWER_OF_TWO) != 0 ? binary(units, power) : decimal(units, power);
    constexpr std::int64_t most_seconds = LATEST / static_cast<std::int64_t>(NS_PER_S);
    // Both are within 64 bits with a sign before they are added, and so is the sum.
    const auto counted = static_cast<std::int64_t>(std::min(parts.seconds, std::uint64_t{LATEST} / 2));
    const std::int64_t seconds = counted + std::clamp(scale.offset_s, EARLIEST / 2, LATEST / 2);
    if (seconds >= most_seconds) {
        return LATEST;
    }
    if (seconds < -most_seconds) {
        return EARLIEST;
    }
    return seconds * static_cast<std::int64_t>(NS_PER_S) + static_cast<std::int64_t>(parts.ns);
}

}  // namespace ifwatch::capture
