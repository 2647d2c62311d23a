#include "cases/case_file.h"

#include <algorithm>
#include <limits>

#include "cases/input_file.h"
#include "cases/octet_text.h"
#include "command_line/text_parts.h"

namespace ifwatch::cases {

namespace {

constexpr std::string_view BLANKS = " \t\r";
constexpr std::int64_t MAX_32_BIT = std::numeric_limits<std::uint32_t>::max();

/// What is wrong; empty: nothing.
using problem = std::string;

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(BLANKS);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

/// Takes the first word off `rest`, which is left without leading blanks.
std::string_view take_word(std::string_view& rest) {
    rest = trimmed(rest);
    const std::string_view word = rest.substr(0, rest.find_first_of(BLANKS));
    rest = trimmed(rest.substr(word.size()));
    return word;
}

/// The state of the parser between two lines.
struct case_parser {
    trace_case& parsed;
    int line = 0;               // counted from 1
    bool has_original = false;  // of the last record
    std::size_t octets = 0;     // of all records
};

problem parse_channel(case_parser& parser, std::string_view rest) {
    const auto value = parse_number(rest, -0x8000, 0xFFFF);
    if (!value) {
        return "channel takes the code of a channel type, not " + in_quotes(rest);
    }
    if (parser.parsed.channel_line != 0) {
        return "a second channel line";
    }
    parser.parsed.channel_line = parser.line;
    parser.parsed.channel_type = static_cast<int>(*value);
    return {};
}

problem parse_interface(case_parser& parser, std::string_view rest) {
    const auto value = parse_number(rest, 0, std::numeric_limits<std::int32_t>::max());
    if (!value) {
        return "interface takes an interface index, not " + in_quotes(rest);
    }
    if (parser.parsed.interface_index) {
        return "a second interface line";
    }
    parser.parsed.interface_line = parser.line;
    parser.parsed.interface_index = static_cast<std::uint32_t>(*value);
    return {};
}

problem parse_name(case_parser& parser, std::string_view rest) {
    if (rest.empty()) {
        return "name takes a text";
    }
    if (!parser.parsed.name.empty()) {
        return "a second name line";
    }
    parser.parsed.name = rest;
    return {};
}

problem parse_options(case_parser& parser, std::string_view rest) {
    parser.parsed.options.emplace_back(rest);
    return {};
}

/// One KEY=VALUE behind a record's time stamp.
problem parse_record_key(case_parser& parser, case_record& record, std::string_view word) {
    const std::size_t equals = word.find('=');
    const std::string_view key = word.substr(0, equals);
    const std::string_view text = equals == std::string_view::npos ? std::string_view{} : word.substr(equals + 1);
    const auto value = parse_number(text, 0, key == "original" ? 0xFFFF : MAX_32_BIT);
    if (key != "sequence" && key != "flags" && key != "info" && key != "original") {
        return "unknown record key " + in_quotes(word);
    }
    if (!value) {
        return std::string(key) + " takes a number, not " + in_quotes(text);
    }
    const auto number = static_cast<std::uint32_t>(*value);
    if (key == "sequence") {
        record.sequence = number;
    } else if (key == "flags") {
        record.flags = number;
    } else if (key == "info") {
        record.info = number;
    } else {
        record.original_length = static_cast<std::uint16_t>(number);
        parser.has_original = true;
    }
    return {};
}

problem parse_record(case_parser& parser, std::string_view rest) {
    const std::string_view direction = take_word(rest);
    if (direction != "R" && direction != "X") {
        return "record takes R (received) or X (sent), not " + in_quotes(direction);
    }
    const std::string_view time = take_word(rest);
    const auto timestamp = parse_number(time, 0, MAX_32_BIT);
    if (!timestamp) {
        return "record takes a time stamp in ms, not " + in_quotes(time);
    }
    std::vector<case_record>& records = parser.parsed.records;
    case_record record;
    record.timestamp_ms = static_cast<std::uint32_t>(*timestamp);
    record.flags = direction == "X" ? 1 : 0;
    record.sequence = records.empty() ? 1 : records.back().sequence + 1;
    parser.has_original = false;
    while (!rest.empty()) {
        if (problem wrong = parse_record_key(parser, record, take_word(rest)); !wrong.empty()) {
            return wrong;
        }
    }
    records.push_back(std::move(record));
    return {};
}

problem parse_octets(case_parser& parser, std::string_view line) {
    if (parser.parsed.records.empty()) {
        return "octets before the first record";
    }
    case_record& record = parser.parsed.records.back();
    const std::size_t before = record.data.size();
    problem wrong = append_octets(line, MAX_RECORD_DATA, record.data);
    parser.octets += record.data.size() - before;
    if (wrong.empty() && parser.octets > MAX_CASE_DATA) {
        wrong = "a case holds at most " + std::to_string(MAX_CASE_DATA) + " octets";
    }
    if (!parser.has_original) {
        record.original_length = static_cast<std::uint16_t>(record.data.size());
    }
    return wrong;
}

struct directive {
    std::string_view word;
    problem (*parse)(case_parser& parser, std::string_view rest);
};

constexpr directive DIRECTIVES[] = {
    {"channel", parse_channel}, {"interface", parse_interface}, {"name", parse_name},
    {"options", parse_options}, {"record", parse_record},
};

problem parse_line(case_parser& parser, std::string_view line) {
    line = without_comment(line);
    if (trimmed(line).empty()) {
        return {};
    }
    if (line.front() == ' ' || line.front() == '\t') {
        return parse_octets(parser, line);
    }
    const std::string_view word = take_word(line);
    for (const directive& known : DIRECTIVES) {
        if (known.word == word) {
            return known.parse(parser, line);
        }
    }
    return "unknown word " + in_quotes(word);
}

}  // namespace

bool parse_case(std::string_view text, trace_case& parsed, std::string& error) {
    case_parser parser{parsed};
    problem wrong;
    while (!text.empty() && wrong.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
        ++parser.line;
        wrong = parse_line(parser, line);
    }
    if (wrong.empty() && parsed.channel_line == 0) {
        wrong = "the channel line is missing";
    }
    error = wrong.empty() ? std::string() : std::to_string(std::max(parser.line, 1)) + ": " + wrong;
    return wrong.empty();
}

bool read_case_file(const std::string& path, trace_case& parsed, std::string& error) {
    std::string text;
    if (!read_input(path, text, error)) {
        return false;
    }
    parsed.path = path;
    if (!parse_case(text, parsed, error)) {
        error = path + ":" + error;
        return false;
    }
    return true;
}

}  // namespace ifwatch::cases
