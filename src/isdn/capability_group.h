#pragma once

#include "base/octets.h"

namespace ifwatch {

/// A walk over the octet groups of an element's contents, where bit 7 of an octet tells that no other of its group
/// follows (ITU-T Q.931 clause 4.5.1). It never reads at or behind the element's end.
struct capability_group {
    octets element;
    int position = 2;

    [[nodiscard]] constexpr bool inside() const { return position < element.length; }
    [[nodiscard]] constexpr int octet() const { return element[position]; }
    [[nodiscard]] constexpr bool is_last() const { return (octet() & 0x80) != 0; }

    /// Moves on, over the ends of groups, and tells whether there is an octet.
    constexpr bool advance(int count) {
        position += count;
        return inside();
    }

    /// Moves to the next octet of the group and tells whether there is one.
    constexpr bool next_in_group() { return inside() && !is_last() && advance(1); }

    /// Moves behind the last octet of the group and tells whether there is another group.
    constexpr bool next_group() {
        while (inside() && !is_last()) {
            ++position;
        }
        return inside() && advance(1);
    }
};

}  // namespace ifwatch
