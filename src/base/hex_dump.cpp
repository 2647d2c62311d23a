#include "base/hex_dump.h"

#include <algorithm>
#include <span>

#include "base/print.h"

namespace ifwatch {

namespace {

constexpr std::size_t OFFSET_WIDTH_MAX = 10;  // eight digits, a colon and a blank

char hex_digit(unsigned value) { return "0123456789abcdef"[value & 0xF]; }

char* write_blanks(char* out, int count) { return std::fill_n(out, std::max(count, 0), ' '); }

char* write_offset(char* out, unsigned offset) {
    for (int shift = offset > 0xFFFF ? 28 : 12; shift >= 0; shift -= 4) {
        // Behind offset 0xFFFF the number is written without leading zeros, as "%04x" does.
        if (shift < 16 || offset >> shift != 0) {
            *out++ = hex_digit(offset >> shift);
        }
    }
    *out++ = ':';
    *out++ = ' ';
    return out;
}

char* write_octets(char* out, std::span<const std::uint8_t> row, int per_line) {
    int position = 0;
    for (const unsigned octet : row) {
        if (position++ == per_line / 2) {
            *out++ = ' ';
        }
        *out++ = hex_digit(octet >> 4);
        *out++ = hex_digit(octet);
        *out++ = ' ';
    }
    const bool gap_missing = position <= per_line / 2;
    return write_blanks(out, 3 * (per_line - position) + (gap_missing ? 1 : 0));
}

char* write_characters(char* out, std::span<const std::uint8_t> row, int per_line) {
    for (const std::uint8_t octet : row) {
        *out++ = is_printable(octet) ? static_cast<char>(octet) : '.';
    }
    return write_blanks(out, per_line - static_cast<int>(row.size()));
}

}  // namespace

void hex_dump(octets data, int length, int per_line, int indent) {
    per_line = std::max(per_line, 1);
    indent = std::max(indent, 0);
    const int count = std::min(length, data.held());
    const auto line_width =
        static_cast<std::size_t>(indent) + OFFSET_WIDTH_MAX + 4 * static_cast<std::size_t>(per_line) + 3;
    for (int offset = 0; offset < count; offset += per_line) {
        char* const line = reserve(standard_output, line_width);
        if (line == nullptr) {
            return;
        }
        const auto row = data.run(offset, std::min(per_line, count - offset));
        char* out = write_blanks(line, indent);
        out = write_offset(out, static_cast<unsigned>(offset));
        out = write_octets(out, row, per_line);
        *out++ = ' ';
        out = write_characters(out, row, per_line);
        *out++ = '\n';
        standard_output.used += static_cast<std::size_t>(out - line);
    }
}

}  // namespace ifwatch
