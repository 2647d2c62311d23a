#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "base/names.h"
#include "base/number_text.h"
#include "base/text_sink.h"

namespace ifwatch {

/// A printf conversion: d, u, x, X, c or s with the flags '-' and '0', a width and a precision (either may be '*'),
/// and the sizes h and l.
struct conversion {
    char type = '\0';  // '\0': none, only literal text
    char size = '\0';  // 'h', 'l' or none
    bool left = false;
    bool zero = false;
    bool star_width = false;
    bool star_precision = false;
    int width = 0;
    int precision = -1;  // -1: none given
};

/// An integer as a conversion sees it.
struct number {
    std::uint64_t magnitude;
    bool negative;
};

/// A literal and the conversion behind it, with the index of its first argument.
struct format_piece {
    std::size_t literal_at = 0;
    std::size_t literal_length = 0;
    conversion how;
    std::size_t argument = 0;

    /// The index of what is converted: behind a width and a precision that are arguments, too.
    [[nodiscard]] constexpr std::size_t value_at() const {
        return argument + (how.star_width ? 1U : 0U) + (how.star_precision ? 1U : 0U);
    }
};

/// An argument of a format: a text, or a number as its conversion sees it.
struct format_argument {
    std::string_view text{};
    number value{};
};

void put_number(text_sink& sink, number value, const conversion& how);
void put_text(text_sink& sink, std::string_view text, const conversion& how);

/// Puts the pieces of a format one by one. There are as many arguments as the pieces ask for.
void put_pieces(text_sink& sink, std::string_view format, std::span<const format_piece> pieces,
                std::span<const format_argument> arguments);

/// Where the first '%' of a text stands, or its end. (std::string_view::find is not a constant expression under g++ 12
/// with the undefined-behaviour sanitizer.)
constexpr std::size_t find_conversion(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size() && text[at] != '%') {
        ++at;
    }
    return at;
}

/// Splits the conversion that starts behind a '%' off `text`.
constexpr conversion take_conversion(std::string_view& text) {
    conversion how;
    const auto take = [&text](char wanted) {
        const bool found = text.starts_with(wanted);
        text.remove_prefix(found ? 1 : 0);
        return found;
    };
    const auto take_digits = [&text]() {
        int value = 0;
        for (; !text.empty() && text[0] >= '0' && text[0] <= '9'; text.remove_prefix(1)) {
            value = value * 10 + (text[0] - '0');
        }
        return value;
    };
    for (bool more = true; more;) {
        const bool left = take('-');
        const bool zero = !left && take('0');
        how.left = how.left || left;
        how.zero = how.zero || zero;
        more = left || zero;
    }
    how.star_width = take('*');
    how.width = how.star_width ? 0 : take_digits();
    if (take('.')) {
        how.star_precision = take('*');
        how.precision = how.star_precision ? 0 : take_digits();
    }
    if (text.starts_with('h') || text.starts_with('l')) {
        how.size = text[0];
        text.remove_prefix(1);
    }
    if (!text.empty()) {
        how.type = text[0];
        text.remove_prefix(1);
    }
    return how;
}

/// What a conversion makes of an integer: %d the 32 bits as a signed number and %u, %x, %X as an unsigned one, as in C;
/// with l a 32-bit argument keeps its value, except that a hexadecimal or unsigned number never takes more than the
/// 32 bits it came in.
template <std::integral T>
constexpr number number_of(T value, char type, char size) {
    if (type == 'd') {
        auto wide = static_cast<std::int64_t>(value);
        if (size == 'h') {
            wide = static_cast<std::int16_t>(value);
        } else if (size != 'l') {
            wide = static_cast<std::int32_t>(value);
        }
        const auto bits = static_cast<std::uint64_t>(wide);
        return {wide < 0 ? 0 - bits : bits, wide < 0};
    }
    if (size == 'h') {
        return {static_cast<std::uint16_t>(value), false};
    }
    if (size == 'l' && sizeof(T) > sizeof(std::uint32_t)) {
        return {static_cast<std::uint64_t>(value), false};
    }
    return {static_cast<std::uint32_t>(value), false};
}

/// A printf format as a template argument; the compiler splits it once.
template <std::size_t N>
struct format_text {
    char characters[N] = {};

    consteval format_text(const char (&literal)[N]) { std::copy_n(literal, N, characters); }

    [[nodiscard]] constexpr std::string_view view() const { return {characters, N - 1}; }
};

namespace detail {

template <format_text Format>
consteval std::size_t count_pieces() {
    const std::string_view text = Format.view();
    return 1 + static_cast<std::size_t>(std::count(text.begin(), text.end(), '%'));
}

template <format_text Format>
consteval auto split_format() {
    std::array<format_piece, count_pieces<Format>()> pieces{};
    const std::string_view all = Format.view();
    std::string_view rest = all;
    std::size_t argument = 0;
    for (format_piece& piece : pieces) {
        piece.literal_at = all.size() - rest.size();
        piece.literal_length = find_conversion(rest);
        piece.argument = argument;
        rest.remove_prefix(piece.literal_length);
        if (rest.empty()) {
            continue;
        }
        rest.remove_prefix(1);
        if (rest.starts_with('%')) {
            ++piece.literal_length;
            rest.remove_prefix(1);
            continue;
        }
        piece.how = take_conversion(rest);
        argument = piece.value_at() + 1;
    }
    return pieces;
}

template <format_text Format>
inline constexpr auto pieces_of = split_format<Format>();

template <format_text Format>
consteval std::size_t count_arguments() {
    std::size_t count = 0;
    for (const format_piece& piece : pieces_of<Format>) {
        if (piece.how.type != '\0') {
            count = piece.value_at() + 1;
        }
    }
    return count;
}

constexpr std::string_view as_text(std::string_view text) { return text; }
constexpr std::string_view as_text(const char* text) { return text == nullptr ? "(null)" : std::string_view(text); }
constexpr std::string_view as_text(table_text text) { return text ? text.view() : "(null)"; }

template <class T>
concept text_argument = requires(const T& value) {
    as_text(value);
};

/// What a format keeps of an argument: a text as a view, a number as it is.
template <class T>
constexpr auto argument_of(const T& value) {
    if constexpr (text_argument<T>) {
        return as_text(value);
    } else {
        return value;
    }
}

template <conversion How, class T>
consteval bool fits_argument() {
    if constexpr (How.type == 's') {
        static_assert(text_argument<T>, "%s takes a text");
    } else {
        static_assert(How.type == 'c' || How.type == 'd' || How.type == 'u' || How.type == 'x' || How.type == 'X',
                      "this conversion is not known");
        static_assert(std::integral<T>, "this conversion takes an integer");
    }
    return true;
}

// Most formats hold nothing but simple conversions: numbers of up to 32 bits, at most filled with zeros, characters
// and texts without a width. What they print is written in one go, once there is room for the most it can be.

template <conversion How, class T>
consteval bool is_simple() {
    const bool number = How.type != 's' && How.type != 'c';
    const int shortest = How.type == 's' ? 0 : 1;
    const bool blanks = How.left || How.star_width || (How.width > shortest && !(How.zero && number));
    return !blanks && How.precision < 0 && !How.star_precision && (!number || sizeof(T) <= sizeof(std::uint32_t));
}

/// The most characters that a simple conversion gives.
template <conversion How, class T>
constexpr std::size_t room_for(const T& value) {
    if constexpr (How.type == 's') {
        return value.size();
    } else if constexpr (How.type == 'c') {
        return 1;
    } else {
        constexpr std::size_t sign = 1;
        // A negative number may be shown as an unsigned one of 32 bits.
        constexpr std::size_t digits = most_digits(std::is_signed_v<T> ? sizeof(std::uint32_t) : sizeof(T));
        constexpr bool hexadecimal = How.type == 'x' || How.type == 'X';
        constexpr bool octet = std::is_same_v<T, std::uint8_t> && How.width <= 1;
        constexpr std::size_t least = hexadecimal || octet ? 0 : DECIMAL_ROOM;
        return sign + std::max({digits, least, static_cast<std::size_t>(How.width)});
    }
}

template <conversion How, class T>
char* write_argument(char* out, const T& value) {
    if constexpr (How.type == 's') {
        return std::copy_n(value.data(), value.size(), out);
    } else if constexpr (How.type == 'c') {
        *out = static_cast<char>(value);
        return out + 1;
    } else {
        const number what = number_of(value, How.type, How.size);
        const auto magnitude = static_cast<std::uint32_t>(what.magnitude);
        if constexpr (How.type == 'x' || How.type == 'X') {
            return write_hex(out, magnitude, How.width, hex_digits(How.type == 'X'));
        }
        if constexpr (std::is_same_v<T, std::uint8_t> && How.width <= 1) {
            return write_octet(out, value);
        }
        const int sign = what.negative ? 1 : 0;
        *out = '-';
        return write_decimal(out + sign, magnitude, How.width - sign);
    }
}

/// One piece of a format and the argument that it takes.
template <format_text Format, std::size_t Index, class Arguments>
struct piece_of {
    static constexpr format_piece PIECE = pieces_of<Format>[Index];
    static constexpr bool CONVERTS = PIECE.how.type != '\0';

    static consteval bool simple() {
        if constexpr (CONVERTS) {
            using argument = std::tuple_element_t<PIECE.value_at(), Arguments>;
            return fits_argument<PIECE.how, argument>() && is_simple<PIECE.how, argument>();
        }
        return true;
    }

    static constexpr std::size_t room(const Arguments& arguments) {
        if constexpr (CONVERTS) {
            return PIECE.literal_length + room_for<PIECE.how>(std::get<PIECE.argument>(arguments));
        }
        return PIECE.literal_length;
    }

    template <std::size_t Count>
    static void collect(std::array<format_argument, Count>& values, const Arguments& arguments) {
        if constexpr (PIECE.how.star_width) {
            values[PIECE.argument].value = number_of(std::get<PIECE.argument>(arguments), 'd', '\0');
        }
        if constexpr (PIECE.how.star_precision) {
            values[PIECE.value_at() - 1].value = number_of(std::get<PIECE.value_at() - 1>(arguments), 'd', '\0');
        }
        if constexpr (PIECE.how.type == 's') {
            values[PIECE.value_at()].text = std::get<PIECE.value_at()>(arguments);
        } else if constexpr (CONVERTS) {
            values[PIECE.value_at()].value =
                number_of(std::get<PIECE.value_at()>(arguments), PIECE.how.type, PIECE.how.size);
        }
    }

    static char* write(char* out, const Arguments& arguments) {
        out = std::copy_n(&Format.characters[PIECE.literal_at], PIECE.literal_length, out);
        if constexpr (CONVERTS) {
            out = write_argument<PIECE.how>(out, std::get<PIECE.argument>(arguments));
        }
        return out;
    }
};

/// False, with nothing written, when the format has other conversions or there is no room.
template <format_text Format, class Arguments, std::size_t... Index>
bool print_at_once(text_sink& sink, const Arguments& arguments, std::index_sequence<Index...> /*pieces*/) {
    if constexpr ((piece_of<Format, Index, Arguments>::simple() && ...)) {
        if (char* const begin = reserve(sink, (piece_of<Format, Index, Arguments>::room(arguments) + ...))) {
            char* out = begin;
            ((out = piece_of<Format, Index, Arguments>::write(out, arguments)), ...);
            sink.used += static_cast<std::size_t>(out - begin);
            return true;
        }
    }
    return false;
}

/// Kept out of the way of print_at_once, which nearly all texts take.
template <format_text Format, class Arguments, std::size_t... Index>
[[gnu::noinline]] void print_in_pieces(text_sink& sink, const Arguments& arguments,
                                       std::index_sequence<Index...> /*pieces*/) {
    std::array<format_argument, std::tuple_size_v<Arguments>> values;
    (piece_of<Format, Index, Arguments>::collect(values, arguments), ...);
    put_pieces(sink, Format.view(), pieces_of<Format>, values);
}

}  // namespace detail

/// Writes the format with its arguments to `sink`. A conversion that does not fit its argument does not compile.
template <format_text Format, class... Arguments>
void print_to(text_sink& sink, const Arguments&... arguments) {
    static_assert(detail::count_arguments<Format>() == sizeof...(Arguments), "as many arguments as conversions");
    const auto all = std::tuple(detail::argument_of(arguments)...);
    constexpr auto pieces = std::make_index_sequence<detail::pieces_of<Format>.size()>();
    if (!detail::print_at_once<Format>(sink, all, pieces)) [[unlikely]] {
        detail::print_in_pieces<Format>(sink, all, pieces);
    }
}

/// Writes a text of a table, which may hold one conversion of `value`.
void print_named_to(text_sink& sink, table_text text, std::uint32_t value);

}  // namespace ifwatch
