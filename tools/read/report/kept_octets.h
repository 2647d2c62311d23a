#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "base/octets.h"

namespace ifwatch::reporting {

/// Octets that strangers sent, as they are remembered: the first MOST of them.
template <std::size_t Most>
class kept_octets {
public:
    static constexpr std::size_t MOST = Most;

    void clear() { length_ = 0; }
    void append(octets from) {
        for (const std::uint8_t octet : from.run(0, std::min(from.length, room()))) {
            kept_[length_++] = octet;
        }
    }
    void assign(octets from) {
        clear();
        append(from);
    }

    [[nodiscard]] int room() const { return static_cast<int>(Most) - length_; }
    [[nodiscard]] bool empty() const { return length_ == 0; }
    [[nodiscard]] octets view() { return octets_of(kept_).cut(length_); }
    [[nodiscard]] octets view() const {
        // A view can be written through; of one that is asked for here nobody does.
        return const_cast<kept_octets*>(this)->view();  // NOLINT(*-pro-type-const-cast)
    }
    [[nodiscard]] bool operator==(const kept_octets& other) const {
        return std::equal(kept_.begin(), kept_.begin() + length_, other.kept_.begin(),
                          other.kept_.begin() + other.length_);
    }

private:
    std::array<std::uint8_t, Most> kept_{};
    std::uint8_t length_ = 0;
};

}  // namespace ifwatch::reporting
