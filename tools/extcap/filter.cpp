#include "extcap/filter.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <vector>

#include "command_line/text_parts.h"

namespace ifwatch::extcap {

namespace {

constexpr char JOINER = 'o';
constexpr std::string_view BLANKS = " \t\r\n";

std::vector<std::string> split(std::string_view text, std::string_view separators) {
    std::vector<std::string> parts;
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find_first_of(separators);
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end != std::string_view::npos ? end + 1 : text.size());
    }
    return parts;
}

std::vector<std::string> words_of(std::string_view text) {
    std::vector<std::string> words = split(text, BLANKS);
    std::erase(words, "");
    for (std::string& word : words) {
        if (const std::size_t escape = word.find("\\!"); escape != std::string::npos) {
            word.erase(escape, 1);
        }
    }
    return words;
}

/// A name, or an IPv4 address where there are but digits and points. A hyphen in front is that of an option.
bool is_host(const std::string& text) {
    if (text.find_first_not_of("0123456789.") == std::string::npos) {
        in_addr address{};
        return inet_pton(AF_INET, text.c_str(), &address) == 1;
    }
    return !text.starts_with('-') && std::ranges::all_of(text, [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '.' || c == '-' || c == '_';
    });
}

/// What is wrong with the fields of an IP session; empty: nothing.
std::string find_session_mistake(std::string_view text) {
    const std::vector<std::string> fields = split(text, ":");
    constexpr std::array<int, 5> LARGEST = {0, 0, 0xFF, 0xFFFF, 0xFFFF};
    constexpr std::array NAMES = {"source", "destination", "protocol", "source port", "destination port"};
    if (fields.size() > LARGEST.size()) {
        return "it has more than five fields";
    }
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const bool right = fields[i].empty() ||
                           (LARGEST[i] == 0 ? is_host(fields[i]) : parse_number(fields[i], 0, LARGEST[i]).has_value());
        if (!right) {
            return std::string("the ") + NAMES[i] + " cannot be " + in_quotes(fields[i]);
        }
    }
    return "";
}

/// Twelve hexadecimal digits, with or without colons, dashes or points between them.
std::string find_address_mistake(std::string_view text) {
    std::string digits;
    std::ranges::copy_if(text, std::back_inserter(digits), [](char c) { return c != ':' && c != '-' && c != '.'; });
    const bool right =
        digits.size() == 12 && std::ranges::all_of(digits, [](unsigned char c) { return std::isxdigit(c) != 0; });
    return right ? "" : "it is no MAC address";
}

/// A filter option, and what its argument has to be.
struct filter_option {
    std::string_view name;
    char kind;
    std::string (*find_mistake)(std::string_view text);  // nullptr: no argument
};

constexpr filter_option FILTER_OPTIONS[] = {
    {"-I", 'I', find_session_mistake},    {"-B", 'B', find_session_mistake}, {"--src", 's', find_address_mistake},
    {"--dst", 'd', find_address_mistake}, {"--llc", 'l', nullptr},           {"-o", JOINER, nullptr},
};

/// Finds the option that a word is or begins with. `argument` is what stands behind it in the same word, without the
/// "=" of a long option.
const filter_option* find_option(std::string_view word, std::string_view& argument) {
    for (const filter_option& option : FILTER_OPTIONS) {
        if (!word.starts_with(option.name)) {
            continue;
        }
        argument = word.substr(option.name.size());
        if (option.name.starts_with("--") && argument.starts_with('=')) {
            argument.remove_prefix(1);
            return &option;
        }
        if (argument.empty() || (option.name.size() == 2 && option.find_mistake != nullptr)) {
            return &option;
        }
    }
    return nullptr;
}

class filter_reader {
public:
    filter_reader(std::string_view text, addinfo_buffer& addinfo) : words_(words_of(text)), addinfo_(addinfo) {}

    /// What is wrong; empty: nothing.
    std::string read() {
        std::string mistake;
        while (mistake.empty() && next_ < words_.size()) {
            mistake = read_option();
        }
        if (mistake.empty() && !words_.empty() && last_ == JOINER) {
            mistake = "-o stands between two filters";
        }
        return mistake;
    }

private:
    std::string read_option() {
        const std::string word = words_[next_++];
        std::string_view argument;
        const filter_option* const option = find_option(word, argument);
        if (option == nullptr) {
            return "unknown filter " + in_quotes(word);
        }
        if (option->find_mistake == nullptr) {
            return take_plain(*option, argument);
        }
        if (argument.empty() && next_ < words_.size()) {
            argument = words_[next_++];
        }
        const bool negated = argument.starts_with('!');
        const std::string name(option->name);
        if (argument.size() == (negated ? 1 : 0)) {
            return "nothing stands behind " + name;
        }
        const std::string mistake = option->find_mistake(argument.substr(negated ? 1 : 0));
        add(option->kind, std::string(argument).c_str());
        return mistake.empty() ? "" : name + " " + in_quotes(argument) + ": " + mistake;
    }

    std::string take_plain(const filter_option& option, std::string_view argument) {
        if (!argument.empty()) {
            return std::string(option.name) + " takes no " + in_quotes(argument);
        }
        if (option.kind == JOINER && last_ == JOINER) {
            return "-o stands between two filters";
        }
        add(option.kind, nullptr);
        return "";
    }

    void add(char kind, const char* text) {
        addinfo_.used = add_filter(addinfo_.data, text, kind, addinfo_.used);
        last_ = kind;
    }

    std::vector<std::string> words_;
    addinfo_buffer& addinfo_;
    std::size_t next_ = 0;
    char last_ = JOINER;  // kind of the filter before
};

}  // namespace

bool add_capture_filter(std::string_view text, addinfo_buffer& addinfo, std::string& error) {
    constexpr int REQUEST_LENGTH = 64;  // more than what follows the filters
    error = filter_reader(text, addinfo).read();
    if (error.empty() && addinfo.used > ADDINFO_LENGTH - REQUEST_LENGTH) {
        error = "it is longer than the router takes";
    }
    if (!error.empty()) {
        error.insert(0, "capture filter: ");
    }
    return error.empty();
}

}  // namespace ifwatch::extcap
