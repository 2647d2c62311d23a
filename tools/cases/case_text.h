#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "cases/case_file.h"

namespace ifwatch::cases {

/// The text of a case file that is read as this case again; `title` becomes its first line, a comment.
[[nodiscard]] std::string case_text(const trace_case& written, std::string_view title);

/// A record whose octets are somebody else's.
struct record_text {
    std::uint32_t timestamp_ms = 0;
    std::uint32_t flags = 0;
    std::uint32_t info = 0;
    std::uint32_t sequence = 0;
    std::uint16_t original_length = 0;
    std::span<const std::uint8_t> data;
};

/// Appends the text of one record: behind the text of a case without records, the case has it. The keys that have the
/// value which they have when they are left out are; of the sequence number that is `usual_sequence`, the one behind
/// that of the record before.
void append_record(std::string& text, const record_text& record, std::uint32_t usual_sequence);

}  // namespace ifwatch::cases
