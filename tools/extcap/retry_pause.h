#pragma once

#include <algorithm>

namespace ifwatch::extcap {

/// The pauses before further attempts: 1, 2, 4 and up to 60 seconds.
class retry_pause {
public:
    int next_s() {
        const int pause = pause_s_;
        pause_s_ = std::min(2 * pause_s_, LONGEST);
        return pause;
    }

private:
    static constexpr int LONGEST = 60;
    int pause_s_ = 1;
};

}  // namespace ifwatch::extcap
