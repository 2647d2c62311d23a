#include "base/terminal_text.h"

#include <algorithm>

#include "base/descriptor_buffer.h"

namespace ifwatch {

namespace {

constexpr std::size_t PIECE = 4096;

bool acts_on_no_terminal(char character) {
    return (character >= ' ' && character <= '~') || character == '\n' || character == '\t';
}

void put_escaped(text_sink& sink, char character) {
    constexpr char DIGITS[] = "0123456789abcdef";
    const auto octet = static_cast<unsigned char>(character);
    const char form[] = {'\\', 'x', DIGITS[octet >> 4], DIGITS[octet & 0xF]};
    put(sink, std::string_view(form, sizeof form));
}

}  // namespace

void put_terminal_text(text_sink& sink, std::string_view text) {
    while (!text.empty()) {
        const auto* const harmful = std::find_if_not(text.begin(), text.end(), acts_on_no_terminal);
        const auto harmless = static_cast<std::size_t>(harmful - text.begin());
        put(sink, text.substr(0, harmless));
        text.remove_prefix(harmless);
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
