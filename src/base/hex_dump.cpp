#include "base/hex_dump.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string_view>

#include "base/number_text.h"
#include "base/print.h"

namespace ifwatch {

namespace {

constexpr std::size_t USUAL_WIDTH = 16;
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

constexpr std::string_view BLANKS = "                ";

/// In blocks, which are quicker to copy than to fill: up to BLANKS.size() - 1 more blanks are written than asked for.
char* write_blanks(char* out, std::size_t count) {
    for (std::size_t i = 0; i < count; i += BLANKS.size()) {
        std::memcpy(out + i, BLANKS.data(), BLANKS.size());
    }
    return out + count;
}

char* write_offset(char* out, unsigned offset) {
    if (offset <= 0xFFFF) {
        std::memcpy(out, DIGITS[offset >> 8].data(), DIGITS[0].size());
        std::memcpy(out + 2, DIGITS[offset & 0xFF].data(), DIGITS[0].size());
        out += 4;
    } else {
        out = write_hex(out, offset, 4, hex_digits(false));
    }
    *out++ = ':';
    *out++ = ' ';
    return out;
}

/// One octet of a line, of which it is the `index`th, with the blanks behind it.
void write_octet_at(char* line, std::uint8_t octet, std::size_t index, std::size_t per_line) {
    const std::size_t gap = index >= per_line / 2 ? 1 : 0;
    std::memcpy(line + 3 * index + gap, DIGITS[octet].data(), DIGITS[octet].size());
    line[3 * per_line + 2 + index] = CHARACTERS[octet];
}

/// A full line, which the compiler writes without counting.
template <std::size_t PerLine>
void write_line(char* line, std::span<const std::uint8_t, PerLine> octets) {
    for (std::size_t i = 0; i < PerLine; ++i) {
        write_octet_at(line, octets[i], i, PerLine);
    }
}

/// A line of any length.
void write_line(char* line, std::span<const std::uint8_t> octets, std::size_t per_line) {
    write_blanks(line, 4 * per_line + 2);
    for (std::size_t i = 0; i < octets.size(); ++i) {
        write_octet_at(line, octets[i], i, per_line);
    }
}

/// Has the room of later lines brought near: the text of a long record is more than the nearest cache holds.
void fetch_ahead(const text_sink& sink) {
    const std::size_t ahead = 1024;  // characters: a dozen lines
    __builtin_prefetch(sink.data + std::min(sink.used + ahead, sink.capacity), 1);
}

}  // namespace

void hex_dump(octets data, int length, int per_line, int indent) {
    const auto width = static_cast<std::size_t>(std::max(per_line, 1));
    const auto blanks = static_cast<std::size_t>(std::max(indent, 0));
    const std::size_t columns = 4 * width + 2;  // behind the offset
    const auto shown = data.run(0, length);
    for (std::size_t offset = 0; offset < shown.size(); offset += width) {
        char* const begin = reserve(standard_output, blanks + OFFSET_WIDTH_MAX + columns + BLANKS.size());
        if (begin == nullptr) {
            return;
        }
        fetch_ahead(standard_output);
        const auto rest = shown.subspan(offset);
        char* const line = write_offset(write_blanks(begin, blanks), static_cast<std::uint32_t>(offset));
        if (width == USUAL_WIDTH && rest.size() >= USUAL_WIDTH) {
            write_line(line, rest.first<USUAL_WIDTH>());
        } else {
            write_line(line, rest.first(std::min(width, rest.size())), width);
        }
        line[columns] = '\n';
        standard_output.used += static_cast<std::size_t>(line - begin) + columns + 1;
    }
}

}  // namespace ifwatch
