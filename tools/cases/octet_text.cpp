#include "cases/octet_text.h"

#include <algorithm>

#include "command_line/text_parts.h"

namespace ifwatch::cases {

namespace {

constexpr std::string_view BLANKS = " \t\r";

std::string too_many(std::size_t limit) { return "a record holds at most " + std::to_string(limit) + " octets"; }

/// Reads the text in quotes at the start of `rest` and takes it off.
std::string take_quoted(std::string_view& rest, std::vector<std::uint8_t>& octets) {
    std::size_t i = 1;
    for (; i < rest.size() && rest[i] != '"'; ++i) {
        if (rest[i] == '\\') {
            ++i;
            if (i == rest.size() || (rest[i] != '"' && rest[i] != '\\')) {
                return R"(a backslash in a text stands before " or \ only)";
            }
        }
        octets.push_back(static_cast<std::uint8_t>(rest[i]));
    }
    if (i >= rest.size()) {
        return "the text has no closing quote";
    }
    rest.remove_prefix(i + 1);
    return {};
}

std::string append_repeated(std::string_view pair, std::string_view count, std::size_t limit,
                            std::vector<std::uint8_t>& octets) {
    const auto value = parse_number("0x" + std::string(pair), 0, 0xFF);
    const auto times = parse_number(count, 0, 0xFFFFFFFF);
    if (pair.size() != 2 || !value || !times) {
        return in_quotes(std::string(pair) + "*" + std::string(count)) +
               " is not an octet and how often it is repeated";
    }
    if (static_cast<std::size_t>(*times) > limit - std::min(limit, octets.size())) {
        return too_many(limit);
    }
    octets.insert(octets.end(), static_cast<std::size_t>(*times), static_cast<std::uint8_t>(*value));
    return {};
}

std::string append_pairs(std::string_view pairs, std::vector<std::uint8_t>& octets) {
    const std::string_view digits = "0123456789abcdefABCDEF";
    if (pairs.find_first_not_of(digits) != std::string_view::npos) {
        return in_quotes(pairs) + " is not hexadecimal";
    }
    if (pairs.size() % 2 != 0) {
        return in_quotes(pairs) + " has an odd number of digits";
    }
    for (; !pairs.empty(); pairs.remove_prefix(2)) {
        const auto value = parse_number("0x" + std::string(pairs.substr(0, 2)), 0, 0xFF);
        octets.push_back(static_cast<std::uint8_t>(*value));
    }
    return {};
}

/// Reads the word at the start of `rest`, hexadecimal pairs or XX*N, and takes it off.
std::string take_word(std::string_view& rest, std::size_t limit, std::vector<std::uint8_t>& octets) {
    const std::string_view word = rest.substr(0, rest.find_first_of(" \t\r\""));
    rest.remove_prefix(word.size());
    const std::size_t star = word.find('*');
    if (star != std::string_view::npos) {
        return append_repeated(word.substr(0, star), word.substr(star + 1), limit, octets);
    }
    return append_pairs(word, octets);
}

}  // namespace

std::string append_octets(std::string_view line, std::size_t limit, std::vector<std::uint8_t>& octets) {
    while (true) {
        line.remove_prefix(std::min(line.find_first_not_of(BLANKS), line.size()));
        if (line.empty()) {
            return {};
        }
        std::string problem = line.starts_with('"') ? take_quoted(line, octets) : take_word(line, limit, octets);
        if (!problem.empty()) {
            return problem;
        }
        if (octets.size() > limit) {
            return too_many(limit);
        }
    }
}

std::string_view without_comment(std::string_view line) {
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') {
            quoted = !quoted;
        } else if (quoted && line[i] == '\\') {
            ++i;
        } else if (!quoted && line[i] == '#') {
            return line.substr(0, i);
        }
    }
    return line;
}

}  // namespace ifwatch::cases
