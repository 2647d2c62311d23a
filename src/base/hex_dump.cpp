#include "base/hex_dump.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "base/number_text.h"
#include "base/print.h"

namespace ifwatch {

namespace {

constexpr std::size_t OFFSET_WIDTH_MAX = 10;  // eight digits, a colon and a blank

/// The digits of each octet, with two blanks: to copy four characters is quicker than two.
constexpr auto DIGITS = [] {
    std::array<std::array<char, 4>, 256> all{};
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i] = {hex_digits(false)[i >> 4], hex_digits(false)[i & 0xF], ' ', ' '};
    }
    return all;
}();

/// The character of each octet.
constexpr auto CHARACTERS = [] {
    std::array<char, 256> all{};
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i] = is_printable(static_cast<int>(i)) ? static_cast<char>(i) : '.';
    }
    return all;
}();

char* write_offset(char* out, unsigned offset) {
    out = write_hex(out, offset, 4, hex_digits(false));
    *out++ = ':';
    *out++ = ' ';
    return out;
}

template <std::size_t Count>
void write_octets(char* digits, char* characters, std::span<const std::uint8_t, Count> octets) {
    for (const std::uint8_t octet : octets) {
        std::memcpy(digits, DIGITS[octet].data(), DIGITS[octet].size());
        digits += 3;
        *characters++ = CHARACTERS[octet];
    }
}

/// Half a line. Most are of eight octets, which the compiler then writes without counting.
void write_half(char* digits, char* characters, std::span<const std::uint8_t> octets) {
    if (octets.size() == 8) {
        write_octets(digits, characters, octets.first<8>());
    } else {
        write_octets(digits, characters, octets);
    }
}

/// The octets with a gap in the middle, and their characters.
void write_row(char* out, std::span<const std::uint8_t> row, std::size_t per_line) {
    const std::size_t half = std::min(row.size(), per_line / 2);
    char* const characters = out + 3 * per_line + 2;
    write_half(out, characters, row.first(half));
    write_half(out + 3 * half + 1, characters + half, row.subspan(half));
}

}  // namespace

void hex_dump(octets data, int length, int per_line, int indent) {
    const auto width = static_cast<std::size_t>(std::max(per_line, 1));
    const auto blanks = static_cast<std::size_t>(std::max(indent, 0));
    const auto shown = data.run(0, length);
    for (std::size_t offset = 0; offset < shown.size(); offset += width) {
        const std::size_t columns = 4 * width + 2;  // behind the offset
        char* const line = reserve(standard_output, blanks + OFFSET_WIDTH_MAX + columns + 1);
        if (line == nullptr) {
            return;
        }
        const auto row = shown.subspan(offset, std::min(width, shown.size() - offset));
        char* const out = write_offset(std::fill_n(line, blanks, ' '), static_cast<std::uint32_t>(offset));
        if (row.size() < width || width == 1) {  // the halves of a full row bring all its blanks
            std::fill_n(out, columns, ' ');
        }
        write_row(out, row, width);
        out[columns] = '\n';
        standard_output.used += static_cast<std::size_t>(out - line) + columns + 1;
    }
}

}  // namespace ifwatch
