#include "cases/case_text.h"

#include <algorithm>

#include "command_line/text_parts.h"

namespace ifwatch::cases {

namespace {

constexpr std::string_view HEX_DIGITS = "0123456789ABCDEF";
constexpr std::size_t OCTETS_PER_LINE = 16;

void append_hex(std::string& text, std::uint32_t value, int digits) {
    for (int i = digits - 1; i >= 0; --i) {
        text += HEX_DIGITS[value >> (4 * i) & 0xF];
    }
}

void append_octet_lines(std::string& text, std::span<const std::uint8_t> octets) {
    while (!octets.empty()) {
        const auto line = octets.first(std::min(octets.size(), OCTETS_PER_LINE));
        text += ' ';
        for (const std::uint8_t octet : line) {
            text += ' ';
            append_hex(text, octet, 2);
        }
        text += '\n';
        octets = octets.subspan(line.size());
    }
}

}  // namespace

void append_record(std::string& text, const record_text& record, std::uint32_t usual_sequence) {
    const bool sent = (record.flags & 1) != 0;
    text += sent ? "record X " : "record R ";
    text += std::to_string(record.timestamp_ms);
    if (record.sequence != usual_sequence) {
        text += " sequence=" + std::to_string(record.sequence);
    }
    if (record.flags != (sent ? 1U : 0U)) {
        text += " flags=0x";
        append_hex(text, record.flags, 8);
    }
    if (record.info != 0) {
        text += " info=0x";
        append_hex(text, record.info, 8);
    }
    if (record.original_length != record.data.size()) {
        text += " original=" + std::to_string(record.original_length);
    }
    text += '\n';
    append_octet_lines(text, record.data);
}

std::string case_text(const trace_case& written, std::string_view title) {
    std::string text = "# " + on_one_line(title) + "\nchannel " + std::to_string(written.channel_type) + "\n";
    if (written.interface_index) {
        text += "interface " + std::to_string(*written.interface_index) + "\n";
    }
    if (!written.name.empty()) {
        text += "name " + written.name + "\n";
    }
    for (const std::string& line : written.options) {
        text += "options " + line + "\n";
    }
    std::uint32_t usual_sequence = 1;
    for (const case_record& record : written.records) {
        append_record(text,
                      {.timestamp_ms = record.timestamp_ms,
                       .flags = record.flags,
                       .info = record.info,
                       .sequence = record.sequence,
                       .original_length = record.original_length,
                       .data = record.data},
                      usual_sequence);
        usual_sequence = record.sequence + 1;
    }
    return text;
}

}  // namespace ifwatch::cases
