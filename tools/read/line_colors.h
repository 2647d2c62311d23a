#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/text_sink.h"

namespace ifwatch::read {

/// How a line of a trace is set off: the first line of a record stands out, hexadecimal steps back.
enum class line_kind : std::uint8_t { OTHER, RECORD, HEXADECIMAL, INTERFACE };

/// The kind of a line, told by its first LINE_KIND_LENGTH characters.
[[nodiscard]] line_kind find_line_kind(std::string_view beginning);
inline constexpr std::size_t LINE_KIND_LENGTH = 32;

/// Colours lines that come in pieces cut anywhere. A text goes through put_terminal_text first: no control character
/// of it is left when the colours are added.
class line_colors {
public:
    /// Puts a piece, coloured; its last characters are held back while they do not tell the kind of their line.
    void put(text_sink& out, std::string_view text);

    /// Puts what is held back.
    void finish(text_sink& out);

private:
    void put_line_part(text_sink& out, std::string_view part);
    void begin_line(text_sink& out);

    [[nodiscard]] std::string_view held() const { return {held_.data(), held_length_}; }

    std::array<char, LINE_KIND_LENGTH> held_{};  // of a line whose kind is not known yet
    std::size_t held_length_ = 0;
    bool in_line_ = false;  // its kind is known
    line_kind kind_ = line_kind::OTHER;
};

}  // namespace ifwatch::read
