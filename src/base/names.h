#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace ifwatch {

/// A text of one of the program's own tables. It can only be made from a literal, and holds at most one conversion
/// that takes a number (%d, %u, %x, %X or %c, with flags, width and size): the compiler refuses any other, so that
/// print_named may use it as a format.
class table_text {
public:
    constexpr table_text() = default;
    constexpr table_text(std::nullptr_t) {}
    template <std::size_t N>
    consteval table_text(const char (&literal)[N]) : text_(literal), length_(N - 1), plain_(!is_one_of('%', literal)) {
        if (!fits(literal)) {
            throw "a text of a table holds at most one conversion, and that of a number";
        }
    }

    [[nodiscard]] constexpr explicit operator bool() const { return text_ != nullptr; }
    [[nodiscard]] constexpr std::string_view view() const { return {text_, length_}; }
    /// A text without a conversion, which stands for itself.
    [[nodiscard]] constexpr bool plain() const { return plain_; }

private:
    static constexpr bool is_one_of(char wanted, const char* set) {
        for (; *set != '\0'; ++set) {
            if (*set == wanted) {
                return true;
            }
        }
        return false;
    }

    static constexpr bool fits(const char* text) {
        int conversions = 0;
        for (; *text != '\0'; ++text) {
            if (*text != '%') {
                continue;
            }
            ++text;
            while (is_one_of(*text, "-0123456789.hl") && *text != '\0') {
                ++text;
            }
            if (*text == '%') {
                continue;
            }
            if (*text == '\0' || !is_one_of(*text, "duxXc") || ++conversions > 1) {
                return false;
            }
        }
        return true;
    }

    const char* text_ = nullptr;
    std::uint32_t length_ = 0;
    bool plain_ = true;
};

/// One row of a value-name table.
struct named_value {
    int value = 0;
    table_text name;
};

/// The name of the first row with this value, or `otherwise` (which may be absent). A row without a name ends the
/// table early.
[[nodiscard]] table_text value_name(std::span<const named_value> table, int value, table_text otherwise = nullptr);

/// The name at `index`, or `otherwise` for an index outside the array.
[[nodiscard]] table_text name_at(std::span<const table_text> names, int index, table_text otherwise = nullptr);

/// A printable character of the C locale: 0x20 to 0x7E.
[[nodiscard]] constexpr bool is_printable(int octet) { return octet >= 0x20 && octet <= 0x7E; }

}  // namespace ifwatch
