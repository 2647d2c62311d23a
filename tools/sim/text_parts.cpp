#include "sim/text_parts.h"

namespace ifwatch::sim {

std::string on_one_line(std::string_view text) {
    constexpr std::string_view hex_digits = "0123456789abcdef";
    std::string line;
    for (const char character : text) {
        const auto octet = static_cast<unsigned char>(character);
        if (character == '\n') {
            line += "\\n";
        } else if (octet < 0x20 || octet == 0x7F) {
            line += "\\x";
            line += hex_digits[octet >> 4];
            line += hex_digits[octet & 0xF];
        } else {
            line += character;
        }
    }
    return line;
}

}  // namespace ifwatch::sim
