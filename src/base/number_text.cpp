#include "base/number_text.h"

namespace ifwatch {

namespace {

constexpr std::uint32_t EIGHT_DIGITS = 100'000'000;

/// The eight digits of a number below EIGHT_DIGITS, each an octet and the first the lowest: the number is split into
/// halves of four digits, these into pairs and the pairs into digits, all at once side by side. The factors are
/// 1/100 and 1/10 in binary, near enough for four and for two digits.
constexpr std::uint64_t split_digits(std::uint32_t value) {
    const std::uint64_t fours = value / 10000 | static_cast<std::uint64_t>(value % 10000) << 32;
    const std::uint64_t hundreds = (fours * 10486 >> 20) & 0x0000007F'0000007F;
    const std::uint64_t pairs = hundreds | (fours - hundreds * 100) << 16;
    const std::uint64_t tens = (pairs * 103 >> 10) & 0x000F000F'000F000F;
    return tens | (pairs - tens * 10) << 8;
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
    if (value >= EIGHT_DIGITS || least > 8) {
        out = write_decimal(out, value / EIGHT_DIGITS, least - 8);
        return write_decimal(out, value % EIGHT_DIGITS, 8);
    }
    const std::uint64_t digits = split_digits(value);
    const int zeros = std::min(std::countr_zero(digits) / 8, 8 - std::max(least, 0));
    const std::uint64_t characters = (digits | 0x3030303030303030) >> 8 * zeros;
    for (int i = 0; i < 8; ++i) {
        out[i] = static_cast<char>(characters >> 8 * i & 0xFF);
    }
    return out + 8 - zeros;
}

}  // namespace ifwatch
