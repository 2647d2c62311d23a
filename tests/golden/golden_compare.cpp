#include "golden/golden_compare.h"

#include <algorithm>
#include <cctype>

namespace ifwatch::test {

namespace {

constexpr std::string_view MARK = "===";

/// Takes the first line, with its newline, off the text.
std::string_view take_line(std::string_view& text) {
    const std::size_t newline = text.find('\n');
    const std::string_view line = text.substr(0, newline == std::string_view::npos ? newline : newline + 1);
    text.remove_prefix(line.size());
    return line;
}

/// A header line begins with a time stamp: six digits or more, a point and three digits.
bool begins_record(std::string_view line) {
    const auto is_digit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    const std::size_t digits =
        static_cast<std::size_t>(std::find_if_not(line.begin(), line.end(), is_digit) - line.begin());
    const std::string_view rest = line.substr(digits);
    return digits >= 6 && rest.size() > 4 && rest[0] == '.' && rest[4] == ' ' &&
           std::all_of(rest.begin() + 1, rest.begin() + 4, is_digit);
}

std::string mark_of(const std::string& options) {
    return std::string(MARK) + (options.empty() ? "" : " " + options) + "\n";
}

/// A mark may carry blanks behind an empty options text.
bool is_mark(std::string_view line, const std::string& options) {
    const std::string mark = mark_of(options);
    return line == mark || (options.empty() && line == std::string(MARK) + " \n");
}

}  // namespace

std::string visible(std::string_view line) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string result = "\"";
    for (const char c : line) {
        const auto octet = static_cast<unsigned char>(c);
        if (c == '\n') {
            result += "\\n";
        } else if (c == '\t') {
            result += "\\t";
        } else if (octet < 0x20 || octet > 0x7E) {
            result += {'\\', 'x', digits[octet >> 4], digits[octet & 0x0F]};
        } else {
            result += c;
        }
    }
    return result + "\"";
}

std::optional<difference> first_difference(std::string_view expected, std::string_view got) {
    difference found;
    while (!expected.empty() || !got.empty()) {
        const std::string_view wanted_line = take_line(expected);
        const std::string_view got_line = take_line(got);
        ++found.line;
        found.record += begins_record(wanted_line.empty() ? got_line : wanted_line) ? 1 : 0;
        if (wanted_line != got_line) {
            found.expected = wanted_line.empty() ? "(end of output)" : visible(wanted_line);
            found.got = got_line.empty() ? "(end of output)" : visible(got_line);
            return found;
        }
    }
    return std::nullopt;
}

std::string join_runs(const std::vector<golden_run>& runs) {
    if (runs.size() == 1) {
        return runs.front().output;
    }
    std::string text;
    for (const golden_run& run : runs) {
        text += mark_of(run.options) + run.output;
    }
    return text;
}

bool split_runs(std::string_view text, const std::vector<std::string>& options, std::vector<golden_run>& runs,
                std::string& error) {
    runs.clear();
    if (options.size() == 1) {
        runs.push_back({options.front(), std::string(text)});
        return true;
    }
    while (!text.empty()) {
        const std::string_view line = take_line(text);
        if (runs.size() < options.size() && is_mark(line, options[runs.size()])) {
            runs.push_back({options[runs.size()], {}});
        } else if (runs.empty()) {
            error = "the expected text does not begin with " + visible(mark_of(options.front()));
            return false;
        } else {
            runs.back().output += line;
        }
    }
    if (runs.size() < options.size()) {
        error = "the expected text has no line " + visible(mark_of(options[runs.size()]));
    }
    return runs.size() == options.size();
}

}  // namespace ifwatch::test
