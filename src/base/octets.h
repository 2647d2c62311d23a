#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

namespace ifwatch {

/// A bounded view of the octets of a frame, and the only way a decoder reads them.
///
/// `length` is what the protocol declares: it may exceed what is held and may be negative, and is kept as it is for
/// arithmetic, comparisons and printed numbers. `end` is where the captured octets really end. Reading before `data`
/// or at and past `end` gives 0, writing there does nothing, and moving past `end` stops at it.
struct octets {
    std::uint8_t* data = nullptr;
    int length = 0;
    const std::uint8_t* end = nullptr;

    /// Octets that are really there from here to the hard end.
    [[nodiscard]] constexpr int held() const { return data < end ? static_cast<int>(end - data) : 0; }

    /// Octets that are both declared and held: the bound of a loop over the declared length. Never negative.
    [[nodiscard]] constexpr int within() const { return std::clamp(length, 0, held()); }

    [[nodiscard]] constexpr std::uint8_t operator[](int i) const {
        return i >= 0 && i < held() ? data[i] : std::uint8_t{0};
    }

    constexpr void set(int i, std::uint8_t value) const {
        if (i >= 0 && i < held()) {
            data[i] = value;
        }
    }

    /// Network order; octets that are not held count as 0.
    [[nodiscard]] constexpr std::uint16_t be16(int i) const { return static_cast<std::uint16_t>(big_endian<2>(i)); }
    [[nodiscard]] constexpr std::uint32_t be24(int i) const { return big_endian<3>(i); }
    [[nodiscard]] constexpr std::uint32_t be32(int i) const { return big_endian<4>(i); }

    /// "Host order" fields: little-endian on every machine.
    [[nodiscard]] constexpr std::uint16_t le16(int i) const {
        return static_cast<std::uint16_t>((*this)[i] | (*this)[i + 1] << 8);
    }
    [[nodiscard]] constexpr std::uint32_t le32(int i) const {
        return le16(i) | static_cast<std::uint32_t>(le16(i + 2)) << 16;
    }

    /// The same view `n` octets further on, `n` octets shorter. A negative `n` lengthens it without moving back.
    [[nodiscard]] constexpr octets skip(int n) const {
        return at(n, static_cast<int>(static_cast<unsigned>(length) - static_cast<unsigned>(n)));
    }

    /// The view `n` octets further on with a newly declared length; the hard end stays.
    [[nodiscard]] constexpr octets at(int n, int declared) const {
        return {data + std::clamp(n, 0, held()), declared, end};
    }

    /// The first `n` octets (or those held, where they are fewer) as a frame of their own: the hard end moves in.
    [[nodiscard]] constexpr octets cut(int n) const { return {data, n, data + std::clamp(n, 0, held())}; }

    /// At most `n` octets from `offset` that are really held, for a loop over them.
    [[nodiscard]] constexpr std::span<const std::uint8_t> run(int offset, int n) const {
        const int start = std::clamp(offset, 0, held());
        return {data + start, static_cast<std::size_t>(std::clamp(n, 0, held() - start))};
    }

    /// The octets from `offset` as a text, up to a zero octet, `n` octets or the hard end.
    [[nodiscard]] std::string_view text(int offset, int n) const {
        const auto octets_held = run(offset, n);
        const auto zero = std::find(octets_held.begin(), octets_held.end(), std::uint8_t{0});
        // Octets and characters are the same storage; the cast only changes how they are named.
        return {reinterpret_cast<const char*>(octets_held.data()),
                static_cast<std::size_t>(zero - octets_held.begin())};
    }

private:
    template <int Count>
    [[nodiscard]] constexpr std::uint32_t big_endian(int i) const {
        std::uint32_t value = 0;
        if (i >= 0 && i <= held() - Count) [[likely]] {  // one question for all of them
            for (int k = 0; k < Count; ++k) {
                value = value << 8 | data[i + k];
            }
        } else {
            for (int k = 0; k < Count; ++k) {
                value = value << 8 | (*this)[i + k];
            }
        }
        return value;
    }
};

/// A view of a whole buffer: declared and held alike.
[[nodiscard]] constexpr octets octets_of(std::span<std::uint8_t> buffer) {
    return {buffer.data(), static_cast<int>(buffer.size()), buffer.data() + buffer.size()};
}

}  // namespace ifwatch
