#pragma once

#include <cstdint>

namespace ifwatch::extcap {

/// The time stamps of a capture, in milliseconds: the router's, which begin anew after 2^32 ms, made into a line
/// without that break.
class time_line {
public:
    /// `begin` is the time of the first record; the router's own when it is negative.
    [[nodiscard]] std::uint64_t at(std::uint32_t timestamp_ms, std::int64_t begin) {
        if (!started_) {
            started_ = true;
            now_ = begin >= 0 ? begin : std::int64_t{timestamp_ms};
        } else {
            now_ += static_cast<std::int32_t>(timestamp_ms - previous_);  // records may be a little out of order
        }
        previous_ = timestamp_ms;
        return static_cast<std::uint64_t>(now_ > 0 ? now_ : 0);
    }

    [[nodiscard]] bool started() const { return started_; }
    [[nodiscard]] std::uint64_t latest() const { return static_cast<std::uint64_t>(now_ > 0 ? now_ : 0); }

private:
    bool started_ = false;
    std::uint32_t previous_ = 0;
    std::int64_t now_ = 0;
};

}  // namespace ifwatch::extcap
