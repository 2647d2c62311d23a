#include "base/format.h"

namespace ifwatch {

namespace {

/// The digits of a number, written from the end of `digits` towards its start; returns where they begin.
char* write_digits(char* end, std::uint64_t magnitude, char type) {
    if (type == 'd' || type == 'u') {
        do {
            *--end = static_cast<char>('0' + magnitude % 10);
            magnitude /= 10;
        } while (magnitude != 0);
        return end;
    }
    const char* const digits = type == 'X' ? "0123456789ABCDEF" : "0123456789abcdef";
    do {
        *--end = digits[magnitude & 0xF];
        magnitude >>= 4;
    } while (magnitude != 0);
    return end;
}

std::size_t missing(int wanted, std::size_t present) {
    return wanted > 0 && static_cast<std::size_t>(wanted) > present ? static_cast<std::size_t>(wanted) - present : 0;
}

}  // namespace

void put_number(text_sink& sink, number value, const conversion& how) {
    char storage[24];
    char* const end = storage + sizeof storage;
    // A precision of 0 prints the number 0 as nothing, as in C.
    char* const begin = value.magnitude == 0 && how.precision == 0 ? end : write_digits(end, value.magnitude, how.type);
    const auto count = static_cast<std::size_t>(end - begin);
    const std::size_t sign = value.negative ? 1 : 0;
    std::size_t zeros = missing(how.precision, count);
    std::size_t blanks = missing(how.width, count + zeros + sign);
    if (how.zero && !how.left && how.precision < 0) {
        zeros += blanks;
        blanks = 0;
    }
    if (!how.left) {
        put_run(sink, ' ', blanks);
    }
    if (value.negative) {
        put(sink, '-');
    }
    put_run(sink, '0', zeros);
    put(sink, std::string_view(begin, count));
    if (how.left) {
        put_run(sink, ' ', blanks);
    }
}

void put_text(text_sink& sink, std::string_view text, const conversion& how) {
    if (how.precision >= 0) {
        text = text.substr(0, static_cast<std::size_t>(how.precision));
    }
    const std::size_t blanks = missing(how.width, text.size());
    if (!how.left) {
        put_run(sink, ' ', blanks);
    }
    put(sink, text);
    if (how.left) {
        put_run(sink, ' ', blanks);
    }
}

namespace {

void put_converted(text_sink& sink, const format_argument& argument, const conversion& how) {
    if (how.type == 's') {
        put_text(sink, argument.text, how);
    } else if (how.type == 'c') {
        const char character = static_cast<char>(argument.value.magnitude);
        put_text(sink, std::string_view(&character, 1), how);
    } else {
        put_number(sink, argument.value, how);
    }
}

}  // namespace

void put_pieces(text_sink& sink, std::string_view format, std::span<const format_piece> pieces,
                std::span<const format_argument> arguments) {
    for (const format_piece& piece : pieces) {
        put(sink, format.substr(piece.literal_at, piece.literal_length));
        conversion how = piece.how;
        if (how.star_width) {
            const number& width = arguments[piece.argument].value;
            how.left = how.left || width.negative;
            how.width = static_cast<int>(width.magnitude);
        }
        if (how.star_precision) {
            const number& precision = arguments[piece.value_at() - 1].value;
            how.precision = precision.negative ? -1 : static_cast<int>(precision.magnitude);
        }
        if (how.type != '\0') {
            put_converted(sink, arguments[piece.value_at()], how);
        }
    }
}

void print_named_to(text_sink& sink, table_text text, std::uint32_t value) {
    std::string_view rest = detail::as_text(text);
    if (text.plain()) {
        put(sink, rest);
        return;
    }
    while (!rest.empty()) {
        const std::size_t literal = find_conversion(rest);
        put(sink, rest.substr(0, literal));
        rest.remove_prefix(literal);
        if (rest.empty()) {
            break;
        }
        rest.remove_prefix(1);
        if (rest.starts_with('%')) {
            put(sink, '%');
            rest.remove_prefix(1);
            continue;
        }
        const conversion how = take_conversion(rest);
        put_converted(sink, {.value = number_of(value, how.type, how.size)}, how);
    }
}

}  // namespace ifwatch
