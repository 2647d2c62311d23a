#include "read/line_colors.h"

#include <algorithm>

#include "base/terminal_text.h"

namespace ifwatch::read {

namespace {

constexpr std::string_view PLAIN = "\x1b[0m";

// By line_kind: as it is, bold, dim, cyan.
constexpr std::string_view COLORS[] = {"", "\x1b[1m", "\x1b[2m", "\x1b[36m"};

bool is_digit(char character) { return character >= '0' && character <= '9'; }
bool is_hex_digit(char character) { return is_digit(character) || (character >= 'a' && character <= 'f'); }

/// How many characters at the beginning of a text are of a kind.
template <class Predicate>
std::size_t count_leading(std::string_view text, Predicate is_of_kind) {
    return static_cast<std::size_t>(std::ranges::find_if_not(text, is_of_kind) - text.begin());
}

/// "000001.068 "
bool begins_record(std::string_view text) {
    const std::size_t seconds = count_leading(text, is_digit);
    text.remove_prefix(seconds);
    return seconds >= 6 && text.starts_with('.') && count_leading(text.substr(1), is_digit) == 3 &&
           text.substr(4).starts_with(' ');
}

/// "      0000: "
bool is_hexadecimal(std::string_view text) {
    const std::size_t blanks = count_leading(text, [](char character) { return character == ' '; });
    text.remove_prefix(blanks);
    const std::size_t digits = count_leading(text, is_hex_digit);
    return blanks > 0 && digits >= 4 && text.substr(digits).starts_with(": ");
}

}  // namespace

line_kind find_line_kind(std::string_view beginning) {
    if (begins_record(beginning)) {
        return line_kind::RECORD;
    }
    if (is_hexadecimal(beginning)) {
        return line_kind::HEXADECIMAL;
    }
    return beginning.starts_with("=== ") ? line_kind::INTERFACE : line_kind::OTHER;
}

/// Puts what was held back of the line, now that its kind is known.
void line_colors::begin_line(text_sink& out) {
    kind_ = find_line_kind(held());
    in_line_ = true;
    ifwatch::put(out, COLORS[static_cast<std::size_t>(kind_)]);
    put_terminal_text(out, held());
    held_length_ = 0;
}

/// A part of one line, without its end.
void line_colors::put_line_part(text_sink& out, std::string_view part) {
    if (!in_line_) {
        const std::size_t taken = std::min(part.size(), LINE_KIND_LENGTH - held_length_);
        std::copy_n(part.begin(), taken, &held_[held_length_]);
        held_length_ += taken;
        part.remove_prefix(taken);
        if (held_length_ < LINE_KIND_LENGTH) {
            return;
        }
        begin_line(out);
    }
    put_terminal_text(out, part);
}

void line_colors::put(text_sink& out, std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        put_line_part(out, text.substr(0, end));
        text.remove_prefix(end);
        if (!text.empty()) {
            finish(out);
            ifwatch::put(out, '\n');
            text.remove_prefix(1);
        }
    }
}

void line_colors::finish(text_sink& out) {
    if (!in_line_) {
        begin_line(out);
    }
    if (kind_ != line_kind::OTHER) {
        ifwatch::put(out, PLAIN);
    }
    in_line_ = false;
}

}  // namespace ifwatch::read
