#include "base/terminal_text.h"

#include <algorithm>

#include "base/descriptor_buffer.h"
#include "base/names.h"
#include "base/number_text.h"

namespace ifwatch {

namespace {

constexpr std::size_t PIECE = 4096;

bool stays(char character) {
    return is_printable(static_cast<unsigned char>(character)) || character == '\n' || character == '\t';
}

void put_escaped(text_sink& sink, char character) {
    const auto octet = static_cast<unsigned char>(character);
    const char form[] = {'\\', 'x', hex_digits(false)[octet >> 4], hex_digits(false)[octet & 0xF]};
    put(sink, std::string_view(form, sizeof form));
}

}  // namespace

void put_terminal_text(text_sink& sink, std::string_view text) {
    while (!text.empty()) {
        const auto* const end = std::find_if_not(text.begin(), text.end(), stays);
        const auto unchanged = static_cast<std::size_t>(end - text.begin());
        put(sink, text.substr(0, unchanged));
        text.remove_prefix(unchanged);
        if (!text.empty()) {
            put_escaped(sink, text.front());
            text.remove_prefix(1);
        }
    }
}

bool write_terminal_text(int fd, std::string_view text) {
    descriptor_buffer<PIECE> pieces(fd);
    put_terminal_text(pieces, text);
    return pieces.flush();
}

}  // namespace ifwatch
