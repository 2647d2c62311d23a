#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/format.h"
#include "base/octets.h"
#include "base/print.h"
#include "read/report/journal.h"
#include "read/report/remembered.h"

namespace ifwatch::reporting {

/// A record as the page names it: "12.345 #17".
[[nodiscard]] std::string place_text(place at);

/// Its time alone: "12.345".
[[nodiscard]] std::string time_text(place at);

/// A length of time as one says it: "662 ms", "3.0 s", "12 min 5 s", "2 h 10 min".
[[nodiscard]] std::string duration_text(std::uint32_t milliseconds);

/// A count with its noun: "1 call", "3 calls". The noun is one that takes an s.
[[nodiscard]] std::string count_text(std::uint64_t count, const char* noun);

inline constexpr int MAX_FOREIGN_TEXT = 40;

/// Text that strangers wrote, fit for a row: what is not printable ASCII as \x1b, and at most MAX_FOREIGN_TEXT octets
/// of it. It takes the declared octets that are held.
[[nodiscard]] std::string foreign_text(octets text);
[[nodiscard]] std::string foreign_name(std::string_view text);

/// The same between apostrophes.
[[nodiscard]] std::string quoted_text(octets text);

/// Text that strangers wrote, as it is remembered: its first octets, as they came, and whether there were more.
class short_text {
public:
    static constexpr std::size_t MOST = 24;

    void append(octets text);
    void append(const short_text& text);
    void clear() { *this = {}; }
    [[nodiscard]] bool empty() const { return length_ == 0; }

    /// Writes it fit for a row.
    void put_to(text_sink& out) const;

private:
    std::array<char, MOST> characters_{};
    std::uint8_t length_ = 0;
    bool cut_ = false;
};

/// A section of the page: what one tracker has seen on one interface. The rows that it has no room for are counted.
struct section {
    static constexpr int MOST_ROWS = 12;

    int rows_left = MOST_ROWS;
    std::uint64_t left_out = 0;
};

inline constexpr int PAGE_WIDTH = 99;

/// Prints a text that begins in that column, and its line end; where the page is not wide enough it is broken between
/// its words, and goes on behind so many blanks.
void print_broken(std::string_view text, int column, int indent);

inline constexpr std::size_t MAX_ROW = 640;

/// Prints a row: its place in a column of its own, and the text in as many lines as it needs. Where the section has no
/// room for it, it is only counted.
void print_row_text(section& to, place at, std::string_view text);

/// A row: what happened, from that record on. It is cut at MAX_ROW characters.
template <format_text Format, class... Arguments>
void print_row(section& to, place at, const Arguments&... arguments) {
    text_buffer<MAX_ROW> text;
    print_to<Format>(text, arguments...);
    print_row_text(to, at, text.text());
}

/// Tells how many rows were left out.
void end_section(const section& to);

/// Prints the rows of all entries that are still remembered, in the order of time, and ends the section; those that
/// were given up count as left out. `put(text, entry)` writes a row's text; an entry without text has no row.
template <class Key, class Entry, class Put>
void print_remembered(const remembered<Key, Entry>& all, Put put, section rows = {}) {
    for (const Entry* const one : all.in_order()) {
        text_buffer<MAX_ROW> text;
        put(text, *one);
        if (!text.text().empty()) {
            print_row_text(rows, one->first, text.text());
        }
    }
    rows.left_out += all.forgotten();
    end_section(rows);
}

}  // namespace ifwatch::reporting
