#include "read/report/page.h"

#include <algorithm>

#include "base/names.h"

namespace ifwatch::reporting {

namespace {

constexpr int PLACE_WIDTH = 16;

constexpr std::uint32_t SECOND = 1000;
constexpr std::uint32_t MINUTE = 60 * SECOND;
constexpr std::uint32_t HOUR = 60 * MINUTE;

void put_foreign(text_sink& out, std::string_view text, bool goes_on) {
    for (const char character : text) {
        const auto octet = static_cast<std::uint8_t>(character);
        if (is_printable(octet)) {
            put(out, character);
        } else {
            print_to<"\\x%02x">(out, octet);
        }
    }
    put(out, goes_on ? "..." : "");
}

}  // namespace

std::string time_text(place at) {
    text_buffer<32> text;
    print_to<"%u.%03u">(text, at.time_ms / SECOND, at.time_ms % SECOND);
    return std::string(text.text());
}

std::string place_text(place at) {
    text_buffer<32> text;
    print_to<"%u.%03u #%u">(text, at.time_ms / SECOND, at.time_ms % SECOND, at.number);
    return std::string(text.text());
}

std::string duration_text(std::uint32_t milliseconds) {
    text_buffer<32> text;
    if (milliseconds < SECOND) {
        print_to<"%u ms">(text, milliseconds);
    } else if (milliseconds < 5 * MINUTE) {
        const std::uint32_t tenths = milliseconds / (SECOND / 10);
        print_to<"%u.%u s">(text, tenths / 10, tenths % 10);
    } else if (milliseconds < 2 * HOUR) {
        print_to<"%u min %u s">(text, milliseconds / MINUTE, milliseconds % MINUTE / SECOND);
    } else {
        print_to<"%u h %u min">(text, milliseconds / HOUR, milliseconds % HOUR / MINUTE);
    }
    return std::string(text.text());
}

std::string count_text(std::uint64_t count, const char* noun) {
    text_buffer<64> text;
    print_to<"%lu %s%s">(text, count, noun, count == 1 ? "" : "s");
    return std::string(text.text());
}

std::string foreign_text(octets text) {
    const auto held = text.run(0, text.length);
    // Octets and characters are the same storage; the cast only changes how they are named.
    return foreign_name({reinterpret_cast<const char*>(held.data()), held.size()});
}

std::string foreign_name(std::string_view text) {
    text_buffer<4 * MAX_FOREIGN_TEXT + 3> shown;
    put_foreign(shown, text.substr(0, MAX_FOREIGN_TEXT), text.size() > MAX_FOREIGN_TEXT);
    return std::string(shown.text());
}

void short_text::append(octets text) {
    for (const std::uint8_t octet : text.run(0, text.length)) {
        if (length_ == MOST) {
            cut_ = true;
            return;
        }
        characters_[length_++] = static_cast<char>(octet);
    }
}

void short_text::append(const short_text& text) {
    const std::size_t taken = std::min<std::size_t>(text.length_, MOST - length_);
    std::copy_n(text.characters_.begin(), taken, characters_.begin() + length_);
    length_ = static_cast<std::uint8_t>(length_ + taken);
    cut_ = cut_ || text.cut_ || taken < text.length_;
}

void short_text::put_to(text_sink& out) const { put_foreign(out, {characters_.data(), length_}, cut_); }

void print_broken(std::string_view text, int column, int indent) {
    auto room = static_cast<std::size_t>(PAGE_WIDTH - column);
    while (text.size() > room) {
        const std::size_t blank = text.rfind(' ', room);
        const std::size_t end = blank != std::string_view::npos && blank > 0 ? blank : room;
        print<"%s\n%*s">(text.substr(0, end), indent, "");
        text.remove_prefix(text[end] == ' ' ? end + 1 : end);
        room = static_cast<std::size_t>(PAGE_WIDTH - indent);
    }
    print<"%s\n">(text);
}

void print_row_text(section& to, place at, std::string_view text) {
    if (to.rows_left == 0) {
        ++to.left_out;
        return;
    }
    --to.rows_left;
    print<"  %-*s ">(PLACE_WIDTH, place_text(at));
    constexpr int column = 2 + PLACE_WIDTH + 1;
    print_broken(text, column, column);
}

void end_section(const section& to) {
    if (to.left_out > 0) {
        print<"  and %lu more\n">(to.left_out);
    }
}

}  // namespace ifwatch::reporting
