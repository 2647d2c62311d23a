#include "base/number_text.h"

namespace ifwatch {

namespace {

constexpr std::uint32_t FOUR_DIGITS = 10'000;
constexpr std::uint32_t EIGHT_DIGITS = 100'000'000;

/// For numbers whose highest bit is this one: added to such a number, the sum has its count of digits in the upper
/// 32 bits.
constexpr auto DIGIT_STEPS = [] {
    std::array<std::uint64_t, 32> all{};
    std::uint64_t power = 10;  // the first number that has a digit more
    std::uint64_t digits = 1;
    for (std::size_t bit = 0; bit < all.size(); ++bit) {
        const bool crosses = power >> bit < 2;  // within the numbers of this bit
        all[bit] = crosses ? ((digits + 1) << 32) - power : digits << 32;
        digits += crosses ? 1 : 0;
        power *= crosses ? 10 : 1;
    }
    return all;
}();

/// Without dividing: where the text goes on is known long before the digits are.
int count_digits(std::uint32_t value) {
    return static_cast<int>((value + DIGIT_STEPS[static_cast<std::size_t>(std::bit_width(value | 1U)) - 1]) >> 32);
}

/// The digits of a number below EIGHT_DIGITS, each an octet and the first the lowest: the number is split into fours,
/// these into pairs and these into digits, all at once. The factors are 1/100 in 19 bits, exact up to 9999, and 1/10 in
/// 10 bits, exact up to 99.
constexpr std::uint64_t split_eight(std::uint32_t value) {
    const std::uint64_t fours = value / FOUR_DIGITS | static_cast<std::uint64_t>(value % FOUR_DIGITS) << 32;
    const std::uint64_t hundreds = (fours * 5243 >> 19) & 0x0000007F0000007F;
    const std::uint64_t pairs = hundreds | (fours - hundreds * 100) << 16;
    const std::uint64_t tens = (pairs * 103 >> 10) & 0x000F000F000F000F;
    return tens | (pairs - tens * 10) << 8;
}

/// Writes the last `count` of eight digits, and spoils what is behind them up to eight characters.
char* write_last(char* out, std::uint64_t digits, int count) {
    const std::uint64_t characters = (digits | 0x3030303030303030) >> 8 * (8 - count);
    for (int i = 0; i < 8; ++i) {
        out[i] = static_cast<char>(characters >> 8 * i & 0xFF);
    }
    return out + count;
}

/// More than eight digits. A function of its own, so that shorter numbers save no registers for its call of memset.
[[gnu::noinline]] char* write_long(char* out, std::uint32_t value, int count) {
    const int most = 10;
    out = std::fill_n(out, std::max(count - most, 0), '0');
    const std::uint32_t front = value / EIGHT_DIGITS;
    *out = static_cast<char>('0' + front / 10);
    out += std::min(count, most) - 9;  // the first of ten digits stays only where there are so many
    *out = static_cast<char>('0' + front % 10);
    return write_last(out + 1, split_eight(value % EIGHT_DIGITS), 8);
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
    const int count = std::max(count_digits(value), least);
    return count <= 8 ? write_last(out, split_eight(value), count) : write_long(out, value, count);
}

}  // namespace ifwatch
