#include "base/number_text.h"

namespace ifwatch {

namespace {

/// "00" to "99", one behind the other.
constexpr auto PAIRS = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

constexpr std::uint32_t POWERS[] = {0, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};

int count_digits(std::uint32_t value) {
    const int estimate = static_cast<int>(std::bit_width(value | 1U)) * 1233 >> 12;  // log10(2) is about 1233/4096
    return value < POWERS[estimate] ? estimate : estimate + 1;
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
    char* const end = out + std::max(least, count_digits(value));
    char* at = end;
    for (; value >= 100; value /= 100) {
        at -= 2;
        std::memcpy(at, &PAIRS[std::size_t{2} * (value % 100)], 2);
    }
    if (value >= 10) {
        at -= 2;
        std::memcpy(at, &PAIRS[std::size_t{2} * value], 2);
    } else {
        *--at = static_cast<char>('0' + value);
    }
    std::fill(out, at, '0');
    return end;
}

}  // namespace ifwatch
