#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/format.h"
#include "base/octets.h"
#include "base/text_sink.h"

namespace ifwatch::reporting {

/// A record, by which a row of the page is found again in the trace: its time stamp and its number.
struct place {
    std::uint32_t time_ms = 0;
    std::uint32_t number = 0;

    [[nodiscard]] constexpr bool operator==(const place&) const = default;
    [[nodiscard]] constexpr auto operator<=>(const place&) const = default;
};

/// Milliseconds from one record to another; 0 where the clock was set back between them.
[[nodiscard]] constexpr std::uint32_t elapsed(place from, place to) {
    return to.time_ms > from.time_ms ? to.time_ms - from.time_ms : 0;
}

/// A frame as a tracker gets it: its record, and its octets from the layer of the tracker on.
struct frame {
    place at;
    bool sent = false;   // by the router
    bool whole = false;  // captured to its end: what is missing of another one says nothing
    octets data;

    /// The same frame from another layer on.
    [[nodiscard]] constexpr frame with(octets layer) const { return {at, sent, whole, layer}; }
};

/// What went wrong, of all interfaces: those that began first, and a count of the others.
class trouble_list {
public:
    static constexpr std::size_t KEPT = 256;
    static constexpr std::size_t SHOWN = 10;
    static constexpr std::size_t MAX_TEXT = 240;
    // Beyond so many they are only counted: to word them takes longer than to print a frame.
    static constexpr std::uint64_t MOST_WORDED = 10'000;

    /// Something that went wrong, which began with that record. The same words about the same interface once more are
    /// counted with the first.
    void add(place at, std::string_view label, std::string_view text);

    /// Whether one more is to be put into words and added. It is counted in either case.
    [[nodiscard]] bool wants_words() {
        only_counted_ += worded_ >= MOST_WORDED ? 1 : 0;
        return worded_ < MOST_WORDED;
    }

    /// No record comes any more: what can only be said at the end is said, however much was told before.
    void begin_end() { worded_ = 0; }

    [[nodiscard]] bool empty() const { return entries_.empty(); }

    /// Prints the first SHOWN of them, a line each or as many as it takes, in the order of time, and how many there are
    /// more.
    void print_lines() const;

private:
    struct entry {
        place first;
        place last;
        std::uint64_t times = 1;
        std::string label;
        std::string text;
    };

    std::vector<entry> entries_;       // as they came
    std::vector<std::size_t> hashes_;  // of their texts
    std::uint64_t dropped_ = 0;
    std::uint64_t worded_ = 0;        // since the first record, or since the last
    std::uint64_t only_counted_ = 0;  // of any words
};

/// How many entries the trackers may remember.
struct allowance {
    static constexpr std::size_t MOST_OF_EACH = 4096;

    std::size_t left = std::size_t{1} << 15;  // all of them together
    std::size_t of_each = MOST_OF_EACH;       // each of them, of each kind
};

/// What a tracker is told about its interface beside the frames, and where it says what went wrong.
struct journal {
    trouble_list* troubles = nullptr;
    allowance* shared = nullptr;
    std::string label;       // how the page calls the interface: "line 2100"
    place now;               // the record at hand; at the end the last one
    std::uint64_t lost = 0;  // records that were lost up to here: who waits for an answer compares
    bool has_sent = false;   // a frame of this interface was sent by the router: else no direction means anything
};

/// Says what went wrong, in one line without an end, from the record on with which it began.
template <format_text Format, class... Arguments>
void tell_trouble(const journal& about, place at, const Arguments&... arguments) {
    if (about.troubles->wants_words()) {
        text_buffer<trouble_list::MAX_TEXT> text;
        print_to<Format>(text, arguments...);
        about.troubles->add(at, about.label, text.text());
    }
}

}  // namespace ifwatch::reporting
