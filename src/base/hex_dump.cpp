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

/// What a line shows of each octet: its digits and a blank, and behind them its character.
constexpr auto OCTETS = [] {
    std::array<std::array<char, 4>, 256> all{};
    for (std::size_t i = 0; i < all.size(); ++i) {
        const char character = is_printable(static_cast<int>(i)) ? static_cast<char>(i) : '.';
        all[i] = {hex_digits(false)[i >> 4], hex_digits(false)[i & 0xF], ' ', character};
    }
    return all;
}();

char* write_offset(char* out, unsigned offset) {
    out = write_hex(out, offset, 4, hex_digits(false));
    *out++ = ':';
    *out++ = ' ';
    return out;
}

/// Writes digits at `out` and characters at `characters`, which moves on. Behind the digits one character is spoilt: to
/// copy four is quicker than three.
char* write_octets(char* out, char*& characters, std::span<const std::uint8_t> octets) {
    for (const std::uint8_t octet : octets) {
        std::memcpy(out, OCTETS[octet].data(), OCTETS[octet].size());
        out += 3;
        *characters++ = OCTETS[octet][3];
    }
    return out;
}

/// The octets with a gap in the middle, and their characters; blanks for what a full line has more.
char* write_row(char* out, std::span<const std::uint8_t> row, std::size_t per_line) {
    const std::size_t half = std::min(row.size(), per_line / 2);
    const std::size_t missing = per_line - row.size();
    char* const behind_digits = out + 3 * per_line + 2;
    char* characters = behind_digits;
    out = write_octets(out, characters, row.first(half));
    *out++ = ' ';
    out = write_octets(out, characters, row.subspan(half));
    *out++ = ' ';
    std::fill(out, behind_digits, ' ');
    return std::fill_n(characters, missing, ' ');
}

}  // namespace

void hex_dump(octets data, int length, int per_line, int indent) {
    const auto width = static_cast<std::size_t>(std::max(per_line, 1));
    const auto blanks = static_cast<std::size_t>(std::max(indent, 0));
    const auto shown = data.run(0, length);
    for (std::size_t offset = 0; offset < shown.size(); offset += width) {
        char* const line = reserve(standard_output, blanks + OFFSET_WIDTH_MAX + 4 * width + 3);
        if (line == nullptr) {
            return;
        }
        const auto row = shown.subspan(offset, std::min(width, shown.size() - offset));
        char* out = std::fill_n(line, blanks, ' ');
        out = write_offset(out, static_cast<std::uint32_t>(offset));
        out = write_row(out, row, width);
        *out++ = '\n';
        standard_output.used += static_cast<std::size_t>(out - line);
    }
}

}  // namespace ifwatch
