#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "base/names.h"
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

void put_number(text_sink& sink, number value, const conversion& how);
void put_text(text_sink& sink, std::string_view text, const conversion& how);

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

/// A literal and the conversion behind it, with the index of its first argument.
struct format_piece {
    std::size_t literal_at = 0;
    std::size_t literal_length = 0;
    conversion how;
    std::size_t argument = 0;
};

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
        argument += 1U + (piece.how.star_width ? 1U : 0U) + (piece.how.star_precision ? 1U : 0U);
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
            count = piece.argument + 1U + (piece.how.star_width ? 1U : 0U) + (piece.how.star_precision ? 1U : 0U);
        }
    }
    return count;
}

constexpr std::string_view as_text(std::string_view text) { return text; }
constexpr std::string_view as_text(const char* text) { return text == nullptr ? "(null)" : std::string_view(text); }
constexpr std::string_view as_text(table_text text) { return as_text(text.c_str()); }

template <class T>
concept text_argument = requires(const T& value) {
    as_text(value);
};

template <conversion How, class T>
void put_argument(text_sink& sink, const T& value, [[maybe_unused]] int width, [[maybe_unused]] int precision) {
    conversion how = How;
    if constexpr (How.star_width) {
        how.left = how.left || width < 0;
        how.width = width < 0 ? -width : width;
    }
    if constexpr (How.star_precision) {
        how.precision = precision;
    }
    if constexpr (How.type == 's') {
        static_assert(text_argument<T>, "%s takes a text");
        if constexpr (How.width == 0 && !How.star_width && How.precision < 0 && !How.star_precision) {
            put(sink, as_text(value));
        } else {
            put_text(sink, as_text(value), how);
        }
    } else if constexpr (How.type == 'c') {
        static_assert(std::integral<T>, "%c takes an octet");
        const char character = static_cast<char>(value);
        put_text(sink, std::string_view(&character, 1), how);
    } else {
        static_assert(How.type == 'd' || How.type == 'u' || How.type == 'x' || How.type == 'X',
                      "this conversion is not known");
        static_assert(std::integral<T>, "this conversion takes an integer");
        put_number(sink, number_of(value, How.type, How.size), how);
    }
}

template <format_text Format, std::size_t Index, class Arguments>
void put_piece(text_sink& sink, [[maybe_unused]] const Arguments& arguments) {
    constexpr format_piece piece = pieces_of<Format>[Index];
    if constexpr (piece.literal_length != 0) {
        put(sink, Format.view().substr(piece.literal_at, piece.literal_length));
    }
    if constexpr (piece.how.type != '\0') {
        constexpr std::size_t precision_at = piece.argument + (piece.how.star_width ? 1U : 0U);
        constexpr std::size_t value_at = precision_at + (piece.how.star_precision ? 1U : 0U);
        int width = 0;
        int precision = 0;
        if constexpr (piece.how.star_width) {
            width = std::get<piece.argument>(arguments);
        }
        if constexpr (piece.how.star_precision) {
            precision = std::get<precision_at>(arguments);
        }
        put_argument<piece.how>(sink, std::get<value_at>(arguments), width, precision);
    }
}

}  // namespace detail

/// Writes the format with its arguments to `sink`. A conversion that does not fit its argument does not compile.
template <format_text Format, class... Arguments>
void print_to(text_sink& sink, const Arguments&... arguments) {
    static_assert(detail::count_arguments<Format>() == sizeof...(Arguments), "as many arguments as conversions");
    const auto all = std::tuple<std::decay_t<const Arguments&>...>(arguments...);
    [&]<std::size_t... Index>(std::index_sequence<Index...>) { (detail::put_piece<Format, Index>(sink, all), ...); }
    (std::make_index_sequence<detail::pieces_of<Format>.size()>());
}

/// Writes a text of a table, which may hold one conversion of `value`.
void print_named_to(text_sink& sink, table_text text, std::uint32_t value);

}  // namespace ifwatch
