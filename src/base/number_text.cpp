#include "base/number_text.h"

namespace ifwatch {

namespace {

constexpr std::uint32_t FOUR_DIGITS = 10'000;
constexpr std::uint32_t EIGHT_DIGITS = 100'000'000;

/// The digits of a number below FOUR_DIGITS, each an octet and the first the lowest: the number is split into pairs
/// and these into digits, both at once. The factors are 1/100 and 1/10 in binary, near enough for so few digits.
constexpr std::uint32_t split_four(std::uint32_t value) {
    const std::uint32_t hundreds = value * 5243 >> 19;
    const std::uint32_t pairs = hundreds | (value - hundreds * 100) << 16;
    const std::uint32_t tens = (pairs * 103 >> 10) & 0x000F000F;
    return tens | (pairs - tens * 10) << 8;
}

constexpr std::uint64_t split_eight(std::uint32_t value) {
    return split_four(value / FOUR_DIGITS) | static_cast<std::uint64_t>(split_four(value % FOUR_DIGITS)) << 32;
}

/// Writes digits that are split, without zeros in front but as many as `least` asks for.
template <class Digits>
char* write_split(char* out, Digits digits, int least) {
    constexpr int most = sizeof digits;
    constexpr auto last = Digits{1} << 8 * (most - 1);  // the last digit is written even when it is 0
    const int zeros = std::min(std::countr_zero(digits | last) / 8, most - std::max(least, 0));
    const Digits characters = (digits | static_cast<Digits>(0x3030303030303030)) >> 8 * zeros;
    for (int i = 0; i < most; ++i) {
        out[i] = static_cast<char>(characters >> 8 * i & 0xFF);
    }
    return out + most - zeros;
}

}  // namespace

constexpr std::array<std::array<char, 4>, 256> OCTET_DIGITS = [] {
    std::array<std::array<char, 4>, 256> all{};
    for (std::size_t octet = 0; octet < all.size(); ++octet) {
        std::size_t count = 0;
        for (const std::size_t power : {100U, 10U, 1U}) {
            if (octet >= power || power == 1) {
                all[octet][count++] = static_cast<char>('0' + octet / power % 10);
            }
        }
        all[octet][3] = static_cast<char>(count);
    }
    return all;
}();

char* write_decimal(char* out, std::uint32_t value, int least) {
    if (value < OCTET_DIGITS.size() && least <= 1) {
        return write_octet(out, static_cast<std::uint8_t>(value));
    }
    if (value < FOUR_DIGITS && least <= 4) {
        return write_split(out, split_four(value), least);
    }
    if (value >= EIGHT_DIGITS || least > 8) {
        const int in_front = least - 8;
        out = std::fill_n(out, std::max(in_front - 4, 0), '0');
        out = write_split(out, split_four(value / EIGHT_DIGITS), std::min(in_front, 4));
        value %= EIGHT_DIGITS;
        least = 8;
    }
    return write_split(out, split_eight(value), least);
}

}  // namespace ifwatch
